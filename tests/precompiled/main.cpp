// Has headers.h compiled; nobody runs it.
int main() {}

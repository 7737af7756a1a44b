extern "C" int plain_library() {
    return 1;
}

#include <QCoreApplication>
#include <cstdio>

#include "process/supervised_process_t.h"

/// A host that does nothing but hold a child, to be killed by a test. Prints the child's process
/// id once the child speaks.
int main(int _count, char** _arguments) {
    const QCoreApplication app(_count, _arguments);
    process::supervised_process_t child;
    QObject::connect(&child, &process::supervised_process_t::said, [&child]() {
        std::printf("%lld\n", static_cast<long long>(child.process_id()));
        std::fflush(stdout);
    });
    child.start({.program = QStringLiteral("/bin/sh"),
                 .arguments = {QStringLiteral("-c"), QStringLiteral("echo here; exec sleep 60")}});
    return QCoreApplication::exec();
}

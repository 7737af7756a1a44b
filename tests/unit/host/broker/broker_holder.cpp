#include <QCoreApplication>
#include <cstdio>

#include "broker/broker_process_t.h"

/// A host that does nothing but hold a broker, to be killed by a test. Argument: the port. Prints
/// the broker's process id once it listens.
int main(int _count, char** _arguments) {
    const QCoreApplication app(_count, _arguments);
    broker::broker_settings_t settings;
    settings.port = quint16(QCoreApplication::arguments().value(1).toUShort());
    broker::broker_process_t process(settings);
    if (!process.start({}).is_ok() || !process.wait_until_listening().is_ok()) {
        return 1;
    }
    std::printf("%lld\n", static_cast<long long>(process.process_id()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}

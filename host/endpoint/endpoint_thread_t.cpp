#include "endpoint/endpoint_thread_t.h"

namespace comunication {

endpoint_thread_t::endpoint_thread_t(const endpoint_settings_t& _settings)
    : held(std::make_unique<mqtt_endpoint_t>(_settings)) {
    thread.setObjectName(QStringLiteral("endpoint"));
    held->moveToThread(&thread);
    QObject::connect(
        held.get(), &mqtt_endpoint_t::request_passed, &drivers,
        [this](bool _is_small) { _is_small ? drivers.begin_read() : drivers.begin(); });
    QObject::connect(&drivers, &drivers_turn_t::over, held.get(), &mqtt_endpoint_t::request_done);
    // Direct: whoever waits for the thread handles no events.
    QObject::connect(held.get(), &mqtt_endpoint_t::stopped, &thread, &QThread::quit,
                     Qt::DirectConnection);
}

endpoint_thread_t::~endpoint_thread_t() {
    stop();
}

void endpoint_thread_t::start() {
    thread.start();
    QMetaObject::invokeMethod(held.get(), &mqtt_endpoint_t::start, Qt::QueuedConnection);
}

void endpoint_thread_t::stop() {
    if (!thread.isRunning()) {
        return;
    }
    QMetaObject::invokeMethod(held.get(), &mqtt_endpoint_t::stop, Qt::QueuedConnection);
    thread.wait();
}

}  // namespace comunication

#include "drivers/plugins/plugin_driver_knx/blocking_thread_t.h"

namespace knx {

namespace {

/// A call that does not block is done within this; the rest of the process may then rely on it.
constexpr unsigned long usual_end_ms = 200;

}  // namespace

blocking_thread_t::blocking_thread_t(QObject* _object) : thread(new QThread), object(_object) {
    object->moveToThread(thread);
    QObject::connect(thread, &QThread::finished, object, &QObject::deleteLater);
    thread->start();
}

blocking_thread_t::~blocking_thread_t() {
    thread->quit();
    if (thread->wait(usual_end_ms)) {
        delete thread;
        return;
    }
    // Its event loop is that of the thread that made it, which may be gone before it ends: then it
    // stays until the process ends.
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
}

}  // namespace knx

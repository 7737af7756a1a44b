#pragma once

#include <QThread>
#include <memory>

#include "endpoint/drivers_turn_t.h"
#include "endpoint/mqtt_endpoint_t.h"

namespace comunication {

/// An endpoint and the thread that it lives in. Made, used and destroyed on one other thread, where
/// the drivers live too.
class endpoint_thread_t {
 public:
    explicit endpoint_thread_t(const endpoint_settings_t& _settings);
    Q_DISABLE_COPY_MOVE(endpoint_thread_t)
    /// stop(), then the endpoint goes.
    ~endpoint_thread_t();

    /// Valid as long as this object. Calls must be posted to it.
    mqtt_endpoint_t* endpoint() const { return held.get(); }

    /// Starts the thread and the endpoint. It connects meanwhile: see its signals.
    void start();

    /// Stops the endpoint and waits for its thread, no longer than the settings' stop time-out
    /// plus what the thread is doing. May be started again.
    void stop();

 private:
    drivers_turn_t drivers;
    QThread thread;
    std::unique_ptr<mqtt_endpoint_t> held;
};

}  // namespace comunication

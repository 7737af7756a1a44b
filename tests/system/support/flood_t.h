#pragma once

#include <QByteArray>
#include <QString>
#include <atomic>
#include <thread>

#include "kit/raw_mqtt_t.h"

namespace support {

/// One user who sends one request over and over, as fast as the broker takes it, QoS 0, from a
/// thread of its own, until this object goes. Comes again when the broker ends the connection.
class flood_t {
 public:
    struct plan_t {
        QString user;
        QByteArray topic;
        QByteArray payload;
        bool subscribes = false;  ///< to everything of its own, and reads nothing of it
    };

    flood_t(quint16 _port, const plan_t& _plan);
    ~flood_t();

    /// Waits until it floods; false: it could not.
    bool wait_until_running();
    quint64 sent() const { return count; }

 private:
    void run(quint16 _port, const plan_t& _plan);
    /// One connection's time; false: there was none.
    bool flood(quint16 _port, const plan_t& _plan, const kit::raw_connect_t& _as);

    enum class state_t { starting, running, ended };

    std::atomic<bool> ends{false};
    std::atomic<state_t> state{state_t::starting};
    std::atomic<quint64> count{0};
    std::thread thread;
};

}  // namespace support

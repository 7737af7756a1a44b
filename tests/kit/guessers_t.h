#pragma once

#include <QString>
#include <atomic>
#include <thread>
#include <vector>

#include "kit/raw_mqtt_t.h"

namespace kit {

/// Eight sockets that try one wrong password after the other, for a known name and for others,
/// until this object goes.
class guessers_t {
 public:
    guessers_t(quint16 _port, const QByteArray& _known) {
        for (int socket = 0; socket < 8; ++socket) {
            threads.emplace_back([this, _port, _known, socket]() {
                for (int i = 0; !over; ++i, ++tries) {
                    const QByteArray number = QByteArray::number(socket * 1'000'000 + i);
                    raw_mqtt_t(raw_mqtt_t::way_t::tcp, QString::number(_port))
                        .connect({.name = i % 4 == 0 ? "name" + number : _known,
                                  .password = "guess" + number,
                                  .id = "flood" + number});
                }
            });
        }
    }
    ~guessers_t() {
        over = true;
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    std::atomic<int> tries = 0;

 private:
    std::atomic<bool> over = false;
    std::vector<std::thread> threads;
};

}  // namespace kit

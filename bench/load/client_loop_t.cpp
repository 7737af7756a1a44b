#include "bench/load/client_loop_t.h"

#include <algorithm>

#include "bench/load/load_client_t.h"

namespace bench {

namespace {

using namespace std::chrono_literals;

constexpr auto longest_sleep = 50ms;

}  // namespace

void client_loop_t::add(load_client_t* _client) {
    clients.push_back(_client);
    sockets.push_back({});
}

bool client_loop_t::run(const std::function<bool()>& _done, clock_t::duration _limit) {
    const auto limit = clock_t::now() + _limit;
    while (!_done()) {
        if (stopped || !turn(limit)) {
            return false;
        }
    }
    return true;
}

bool client_loop_t::turn(clock_t::time_point _limit) {
    const auto now = clock_t::now();
    if (now >= _limit) {
        return false;
    }
    if (now - tended >= 1s) {
        tended = now;
        tend();
    }
    for (std::size_t i = 0; i < clients.size(); ++i) {
        const short write = clients[i]->wants_write() ? POLLOUT : 0;
        sockets[i] = {clients[i]->socket(), short(POLLIN | write), 0};
        if (sockets[i].fd < 0) {
            return false;
        }
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(_limit - now);
    ::poll(sockets.data(), sockets.size(), int(std::min(left, longest_sleep + 0ms).count()));
    for (std::size_t i = 0; i < clients.size(); ++i) {
        if ((sockets[i].revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
            clients[i]->read();
        }
        if (clients[i]->socket() >= 0 && clients[i]->wants_write()) {
            clients[i]->write();
        }
    }
    return true;
}

void client_loop_t::tend() {
    std::for_each(clients.begin(), clients.end(), [](load_client_t* _one) { _one->tend(); });
}

}  // namespace bench

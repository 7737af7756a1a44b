// torlan-bench-publish HOST PORT IN_FLIGHT USERS ELEMENTS BYTES: the raw half of a start. Signs in
// as the line "user password" of standard input, publishes a retained state of BYTES bytes for each
// element and user at QoS 2, IN_FLIGHT of them unanswered, and says "done" and
// how many seconds that took.
#include <cstdlib>
#include <iostream>

#include "bench/load/client_loop_t.h"
#include "bench/load/echo.h"
#include "bench/load/load_client_t.h"

namespace {

using namespace bench;
using namespace std::chrono_literals;

bool publish_all(load_client_t* _client, std::size_t _in_flight, std::size_t _users,
                 std::size_t _elements, std::size_t _bytes) {
    const std::string state = state_payload(0, _bytes);
    const std::size_t all = _users * _elements;
    std::size_t sent = 0;
    client_loop_t loop;
    loop.add(_client);
    return loop.run(
        [&]() {
            for (; sent < all && sent < _client->delivered() + _in_flight; ++sent) {
                const std::string element = "e-" + std::to_string(sent / _users);
                _client->publish(state_topic(int(sent % _users), element), state, 2, true);
            }
            return _client->delivered() == all;
        },
        600s);
}

}  // namespace

int main(int _argc, char** _argv) {
    door_t door;
    if (_argc != 7 || !(std::cin >> door.user >> door.password)) {
        std::cerr << "torlan-bench-publish: it takes HOST PORT IN_FLIGHT USERS ELEMENTS BYTES\n";
        return 2;
    }
    door.host = _argv[1];
    door.port = std::atoi(_argv[2]);
    load_client_t client([](std::string_view, std::string_view) {});
    const auto number = [_argv](int _index) { return std::size_t(std::atol(_argv[_index])); };
    const bool signed_in = client.sign_in(door);
    const auto begin = client_loop_t::clock_t::now();
    if (!signed_in || !publish_all(&client, number(3), number(4), number(5), number(6))) {
        std::cerr << "torlan-bench-publish: not everything was published\n";
        return 1;
    }
    const std::chrono::duration<double> took = client_loop_t::clock_t::now() - begin;
    std::cout << "done " << took.count() << std::endl;
    return 0;
}

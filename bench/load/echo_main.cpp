// torlan-bench-echo HOST PORT QOS BYTES WAY CLIENT USERS STATE: the raw half of a pair. Signs in
// for each line "user password" of standard input up to the line ". .", says "ready", and answers
// every request whose client word is CLIENT with BYTES bytes at QOS. WAY is "server" or "user", see
// echo.h. USERS more than 0: a write is followed by a retained state of STATE bytes for each of
// these users, as the server's writes are. Ends with standard input.
#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "bench/load/client_loop_t.h"
#include "bench/load/echo.h"
#include "bench/load/load_client_t.h"

namespace {

using namespace bench;

struct plan_t {
    int qos = 2;
    std::size_t bytes = 0;
    echo_way_t way = echo_way_t::as_user;
    std::string client;
    int users = 0;
    std::size_t state_bytes = 0;
};

class answerer_t {
 public:
    explicit answerer_t(const plan_t* _plan)
        : plan(_plan), connection([this](std::string_view _topic, std::string_view _payload) {
              answer(_topic, _payload);
          }) {}

    bool join(const door_t& _door) {
        const std::string user = plan->way == echo_way_t::as_server ? "+" : _door.user;
        return connection.sign_in(_door) &&
               connection.subscribe("local/api/v1/" + user + '/' + plan->client + "/request/#", 2);
    }
    load_client_t* client() { return &connection; }

 private:
    void answer(std::string_view _topic, std::string_view _payload) {
        connection.publish(echo_topic(_topic, plan->client, plan->way),
                           echo_payload(_payload, plan->bytes), plan->qos);
        const long value = plan->users > 0 ? value_in(_payload) : -1;
        if (value >= 0) {
            const std::string state = state_payload(value, plan->state_bytes);
            for (int user = 0; user < plan->users; ++user) {
                connection.publish(state_topic(user, _topic.substr(_topic.rfind('/') + 1)), state,
                                   2, true);
            }
        }
    }

    const plan_t* const plan;
    load_client_t connection;
};

bool input_ended() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, 0) > 0;
}

/// Looks at standard input now and then.
bool serve(client_loop_t& _loop) {
    using namespace std::chrono_literals;
    while (!input_ended()) {
        const auto until = client_loop_t::clock_t::now() + 200ms;
        if (!_loop.run([&]() { return client_loop_t::clock_t::now() >= until; }, 10s)) {
            return false;
        }
    }
    return true;
}

int run(door_t _door, const plan_t& _plan) {
    client_loop_t loop;
    std::vector<std::unique_ptr<answerer_t>> answerers;
    while (std::cin >> _door.user >> _door.password && _door.user != ".") {
        answerers.push_back(std::make_unique<answerer_t>(&_plan));
        if (!answerers.back()->join(_door)) {
            std::cerr << "torlan-bench-echo: " << _door.user << " was not let in\n";
            return 1;
        }
        loop.add(answerers.back()->client());
    }
    std::cout << "ready" << std::endl;
    return serve(loop) ? 0 : 1;
}

}  // namespace

int main(int _argc, char** _argv) {
    if (_argc != 9) {
        std::cerr << "torlan-bench-echo: it takes HOST PORT QOS BYTES WAY CLIENT USERS STATE\n";
        return 2;
    }
    door_t door;
    door.host = _argv[1];
    door.port = std::atoi(_argv[2]);
    plan_t plan;
    plan.qos = std::atoi(_argv[3]);
    plan.bytes = std::size_t(std::atol(_argv[4]));
    plan.way = _argv[5] == std::string("server") ? echo_way_t::as_server : echo_way_t::as_user;
    plan.client = _argv[6];
    plan.users = std::atoi(_argv[7]);
    plan.state_bytes = std::size_t(std::atol(_argv[8]));
    return run(door, plan);
}

#include "bench/load/push_load_t.h"

#include <utility>

#include "bench/load/echo.h"

namespace bench {

namespace {

using namespace std::chrono_literals;

constexpr auto longest_wait = 60s;

}  // namespace

push_load_t::push_load_t(push_plan_t _plan) : plan(std::move(_plan)) {
    // What elements have from the start is 0.
    changes.push_back({clock_t::now(), 0});
}

push_load_t::~push_load_t() = default;

bool push_load_t::sign_in() {
    for (const door_t& door : plan.users) {
        auto client = std::make_unique<load_client_t>(
            [this](std::string_view, std::string_view _payload) { on_state(_payload); });
        if (!client->sign_in(door) ||
            !client->subscribe("local/api/v1/" + door.user + "/status/#", 2)) {
            return false;
        }
        loop.add(client.get());
        clients.push_back(std::move(client));
    }
    return true;
}

bool push_load_t::run(load_result_t* _result) {
    result = _result;
    first = changes.size();
    begin = clock_t::now();
    for (int i = 0; i < plan.at_once; ++i) {
        change();
    }
    const auto done = [this]() { return result->waits.size() == changes.size() - first; };
    const bool all = loop.run(done, plan.duration + longest_wait);
    result->seconds = std::chrono::duration<double>(clock_t::now() - begin).count();
    return all;
}

void push_load_t::change() {
    const std::size_t value = changes.size();
    const std::string element = "e-" + std::to_string(value % std::size_t(plan.elements));
    changes.push_back({clock_t::now(), clients.size()});
    clients.front()->publish(
        "local/api/v1/" + plan.users.front().user + "/me/request/set/elements/objects_list/" +
            element,
        R"({"data":{"functions":{"execute":")" + std::to_string(value) + R"("}}})", 0);
}

void push_load_t::on_state(std::string_view _payload) {
    const long value = value_in(_payload);
    if (result == nullptr || value < long(first) || std::size_t(value) >= changes.size() ||
        changes[std::size_t(value)].missing == 0) {
        return;
    }
    change_t& heard = changes[std::size_t(value)];
    result->bytes = _payload.size();
    if (--heard.missing > 0) {
        return;
    }
    const auto now = clock_t::now();
    result->waits.push_back(std::chrono::duration<double, std::micro>(now - heard.begin).count());
    if (now - begin < plan.duration || changes.size() - first < plan.least) {
        change();
    }
}

}  // namespace bench

#include "bench/load/request_load_t.h"

#include <utility>

#include "bench/load/echo.h"

namespace bench {

namespace {

using namespace std::chrono_literals;

constexpr auto longest_wait = 60s;
constexpr std::string_view refusal = "{\"error\"";

std::string root_of(const door_t& _user) {
    return "local/api/v1/" + _user.user + '/';
}

}  // namespace

request_load_t::request_load_t(request_plan_t _plan) : plan(std::move(_plan)) {}

request_load_t::~request_load_t() = default;

bool request_load_t::sign_in() {
    for (std::size_t user = 0; user < plan.users.size(); ++user) {
        auto client = std::make_unique<load_client_t>(
            [this, user](std::string_view, std::string_view _payload) {
                on_answer(user, _payload);
            });
        if (!client->sign_in(plan.users[user]) ||
            !client->subscribe(root_of(plan.users[user]) + plan.answers, plan.answer_qos)) {
            return false;
        }
        loop.add(client.get());
        clients.push_back(std::move(client));
    }
    return true;
}

bool request_load_t::run(load_result_t* _result) {
    result = _result;
    first = asked.size();
    begin = clock_t::now();
    for (std::size_t user = 0; user < clients.size(); ++user) {
        for (int i = 0; i < plan.in_flight; ++i) {
            ask(user);
        }
    }
    const auto done = [this]() { return result->waits.size() == asked.size() - first; };
    const bool all = loop.run(done, plan.duration + longest_wait);
    result->seconds = std::chrono::duration<double>(clock_t::now() - begin).count();
    return all;
}

void request_load_t::ask(std::size_t _user) {
    const std::string payload =
        "{" + plan.data + "\"uuid\":\"" + std::to_string(asked.size()) + "\"}";
    asked.push_back(clock_t::now());
    clients[_user]->publish(
        root_of(plan.users[_user]) + plan.client + "/request/" + plan.verb_and_list, payload,
        plan.request_qos);
}

bool request_load_t::may_ask() const {
    return clock_t::now() - begin < plan.duration || asked.size() - first < plan.least;
}

void request_load_t::on_answer(std::size_t _user, std::string_view _payload) {
    const long uuid = uuid_in(_payload);
    if (uuid < long(first) || std::size_t(uuid) >= asked.size()) {
        return;
    }
    const auto waited = clock_t::now() - asked[std::size_t(uuid)];
    result->waits.push_back(std::chrono::duration<double, std::micro>(waited).count());
    result->errors += _payload.starts_with(refusal) ? 1 : 0;
    result->bytes = _payload.size();
    if (may_ask()) {
        ask(_user);
    }
}

}  // namespace bench

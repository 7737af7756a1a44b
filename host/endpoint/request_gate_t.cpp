#include "endpoint/request_gate_t.h"

#include <utility>

#include "endpoint/json_payload.h"
#include "endpoint/request_rules.h"
#include "logs/log_line.h"

namespace comunication {

namespace {

constexpr const char* source = "host/endpoint/request_gate_t";
/// Users cannot be made up, the broker asks for an account; above it the oldest debts are forgiven.
constexpr int most_allowances = 10'000;
constexpr double lines_per_second = 1.0 / 60;
/// Small ones that a user's turn may hold: each turn costs two threads a wake-up, more than a small
/// request does, and so many of them are still less than one list.
constexpr int most_in_a_turn = 16;
/// What the smallest refusal is charged.
constexpr qsizetype least_refused_bytes = 1'024;

}  // namespace

request_gate_t::request_gate_t(const request_limits_t& _limits, endpoint_counters_t& _counts,
                               std::function<bool()> _is_loaded, QObject* _parent)
    : QObject(_parent),
      limits(_limits),
      counts(_counts),
      is_loaded(std::move(_is_loaded)),
      lanes(_limits) {
    clock.start();
}

request_gate_t::~request_gate_t() = default;

void request_gate_t::take(request_t _request) {
    if (std::size_t(_request.payload.size()) > limits.request_bytes) {
        refuse(_request, request_rules::too_large);
    } else if (!allowance_of(_request.levels.user).requests.take(1, now()) ||
               !lanes.push(_request)) {
        refuse(_request, request_rules::too_many);
    } else {
        pass_on();
    }
}

void request_gate_t::give_back() {
    if (passing.empty()) {
        return;
    }
    const QString user = std::move(passing.front());
    passing.pop_front();
    const auto left = open.find(user);
    if (--*left == 0) {
        open.erase(left);
        finish(user);
    }
}

void request_gate_t::finish(const QString& _user) {
    lanes.release(_user);
    pass_on();
}

void request_gate_t::pass_on() {
    while (int(open.size()) + reading < limits.at_once && !is_loaded()) {
        const std::optional<request_t> next = lanes.pop();
        if (!next) {
            return;
        }
        serve(*next);
    }
}

void request_gate_t::serve(const request_t& _first) {
    bool goes_on = read(_first) && request_rules::is_small(_first);
    for (int count = 1; goes_on && count < most_in_a_turn; ++count) {
        const auto next = lanes.pop_more(_first.levels.user, request_rules::is_small);
        goes_on = next && read(*next);
    }
}

bool request_gate_t::read(const request_t& _request) {
    const std::optional<QJsonObject> payload = json_payload::decode(_request.payload);
    if (payload && !request_rules::is_too_large(*payload, limits)) {
        passing.push_back(_request.levels.user);
        ++open[_request.levels.user];
        Q_EMIT passed(_request, *payload);
        return true;
    }
    if (payload) {
        refuse(_request, request_rules::too_large);
    } else {
        ++counts.malformed_answered;
        Q_EMIT refused(_request.topic, request_rules::malformed());
        Q_EMIT turned_away(_request, request_rules::malformed());
    }
    if (!open.contains(_request.levels.user)) {
        finish_later(_request.levels.user);
    }
    return false;
}

/// Others come in between, however long it took to read.
void request_gate_t::finish_later(const QString& _user) {
    ++reading;
    const auto go_on = [this, _user]() {
        --reading;
        finish(_user);
    };
    QMetaObject::invokeMethod(this, go_on, Qt::QueuedConnection);
}

void request_gate_t::refuse(const request_t& _request, answer_t _answer) {
    ++counts.requests_refused;
    allowance_t& allowance = allowance_of(_request.levels.user);
    if (allowance.lines.take(1, now())) {
        ::utility::log_line(QStringLiteral("Requests of %1 are too many or too large and refused")
                                .arg(_request.levels.user),
                            3, "refuse", source, __LINE__);
    }
    const qsizetype cost = std::max(_request.payload.size(), least_refused_bytes);
    const bool is_answered = allowance.refusals.take(double(cost), now());
    const QJsonObject answer =
        _answer(is_answered ? request_rules::uuid_of(_request.payload) : QString());
    if (is_answered) {
        Q_EMIT refused(_request.topic, answer);
    } else {
        ++counts.refusals_dropped;
    }
    Q_EMIT turned_away(_request, answer);
}

request_gate_t::allowance_t& request_gate_t::allowance_of(const QString& _user) {
    const auto found = allowances.find(_user);
    if (found != allowances.end()) {
        return *found;
    }
    if (allowances.size() >= most_allowances) {
        allowances.clear();
    }
    return *allowances.insert(_user, {base::token_bucket_t(limits.requests_per_second),
                                      base::token_bucket_t(limits.refused_bytes_per_second),
                                      base::token_bucket_t(lines_per_second)});
}

}  // namespace comunication

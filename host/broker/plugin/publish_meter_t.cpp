#include "broker/plugin/publish_meter_t.h"

namespace broker::plugin {

namespace {

constexpr double reports_per_second = 0.2;
/// A list of the largest installation is 0.5 MB.
constexpr double seconds_of_bytes = 4;
/// What may be stopped within a second, in such seconds' worths, until the sender is sent away.
constexpr double excess = 4;
/// Users cannot be made up, but names come and go; above it all debts are forgiven.
constexpr std::size_t most_users = 10'000;

}  // namespace

publish_meter_t::verdict_t publish_meter_t::take(const std::string& _user, std::size_t _bytes,
                                                 std::chrono::milliseconds _now) {
    allowance_t& user = allowance_of(_user);
    const auto size = double(_bytes);
    if (user.messages.take(1, _now) && user.bytes.take(size, _now)) {
        return verdict_t::passes;
    }
    if (!user.excess_messages.take(1, _now) || !user.excess_bytes.take(size, _now)) {
        user.back = _now + away;
        return verdict_t::sent_away;
    }
    return user.reports.take(1, _now) ? verdict_t::stopped_and_told : verdict_t::stopped;
}

bool publish_meter_t::is_away(std::string_view _user, std::chrono::milliseconds _now) const {
    const auto user = users.find(_user);
    return user != users.end() && _now < user->second.back;
}

publish_meter_t::allowance_t& publish_meter_t::allowance_of(const std::string& _user) {
    const auto user = users.find(_user);
    if (user != users.end()) {
        return user->second;
    }
    if (users.size() >= most_users) {
        users.clear();
    }
    return users
        .emplace(_user, allowance_t{.messages = base::token_bucket_t(messages),
                                    .bytes = base::token_bucket_t(bytes, seconds_of_bytes),
                                    .reports = base::token_bucket_t(reports_per_second),
                                    .excess_messages = base::token_bucket_t(messages * excess),
                                    .excess_bytes = base::token_bucket_t(bytes * excess)})
        .first->second;
}

}  // namespace broker::plugin

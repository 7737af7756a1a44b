#include "broker/plugin/publish_meter_t.h"

namespace broker::plugin {

namespace {

constexpr double reports_per_second = 0.2;
/// Users cannot be made up, but names come and go; above it all debts are forgiven.
constexpr std::size_t most_users = 10'000;

}  // namespace

publish_meter_t::verdict_t publish_meter_t::take(const std::string& _user, std::size_t _bytes,
                                                 std::chrono::milliseconds _now) {
    auto user = users.find(_user);
    if (user == users.end()) {
        if (users.size() >= most_users) {
            users.clear();
        }
        user = users
                   .emplace(_user,
                            allowance_t{base::token_bucket_t(messages), base::token_bucket_t(bytes),
                                        base::token_bucket_t(reports_per_second)})
                   .first;
    }
    if (user->second.messages.take(1, _now) && user->second.bytes.take(double(_bytes), _now)) {
        return verdict_t::passes;
    }
    return user->second.reports.take(1, _now) ? verdict_t::stopped_and_told : verdict_t::stopped;
}

}  // namespace broker::plugin

#pragma once

#include <string_view>

#include "broker/plugin/account_table_t.h"
#include "broker/plugin/digest_maker_t.h"
#include "broker/plugin/event_log_t.h"
#include "broker/plugin/moment_t.h"
#include "broker/plugin/password_worker_t.h"
#include "broker/plugin/time_budget_t.h"
#include "broker/plugin/wrong_passwords_t.h"

namespace broker::plugin {

/// Judges names and passwords. An unknown name takes the way and the time of a known one with a
/// wrong password.
class doorkeeper_t {
 public:
    enum class verdict_t {
        right,
        wrong,
        later,  ///< it is being checked: who asks again is told
    };

    /// @p _at_once: the longest that the caller's thread may be busy with one password, so that
    /// who comes for the first time is answered at once while nobody floods; see time_budget_t.
    /// @p _events outlives this object.
    doorkeeper_t(time_budget_t::span_t _at_once, event_log_t* _events)
        : events(_events), budget(_at_once) {}

    account_table_t accounts;

    /// @p _who: the user's name is one as of is_account_name().
    verdict_t judge(const visitor_t& _who, std::string_view _password, const moment_t& _now);

    /// Takes over what was found.
    void settle(const moment_t& _now);

 private:
    verdict_t compare(const visitor_t& _who, std::string_view _password, const digest_t& _digest,
                      const moment_t& _now);
    bool may_compare_here(std::uint32_t _iterations, const moment_t& _now);
    verdict_t compare_here(const password_check_t& _check, const moment_t& _now);
    verdict_t known(const visitor_t& _who, const digest_t& _digest, const moment_t& _now);
    void take_over(const password_verdict_t& _verdict, const moment_t& _now);

    event_log_t* const events;
    const digest_maker_t digests;
    wrong_passwords_t wrong;
    time_budget_t budget;
    password_worker_t worker;
};

}  // namespace broker::plugin

#include "broker/plugin/doorkeeper_t.h"

#include <chrono>
#include <cstring>
#include <utility>

namespace broker::plugin {

namespace {

std::uint64_t seed_of(const digest_t& _digest) {
    std::uint64_t seed = 0;
    std::memcpy(&seed, _digest.data(), sizeof seed);
    return seed;
}

}  // namespace

doorkeeper_t::verdict_t doorkeeper_t::judge(const visitor_t& _who, std::string_view _password,
                                            const moment_t& _now) {
    settle(_now);
    const digest_t digest = digests.make(_who.user, _password);
    const verdict_t verdict = known(_who, digest, _now);
    if (verdict == verdict_t::wrong) {
        events->note(event_kind_t::failed, _who, "password", _now.wall);
    }
    return verdict == verdict_t::later ? compare(_who, _password, digest, _now) : verdict;
}

doorkeeper_t::verdict_t doorkeeper_t::known(const visitor_t& _who, const digest_t& _digest,
                                            const moment_t& _now) {
    const account_t* const account = accounts.find(_who.user);
    if (account != nullptr && account->good_password &&
        digest_maker_t::equal(*account->good_password, _digest)) {
        return verdict_t::right;
    }
    const std::uint64_t life = account == nullptr ? 0 : account->life;
    return wrong.contains(_digest, life, _now.steady) ? verdict_t::wrong : verdict_t::later;
}

doorkeeper_t::verdict_t doorkeeper_t::compare(const visitor_t& _who, std::string_view _password,
                                              const digest_t& _digest, const moment_t& _now) {
    const account_t* const account = accounts.find(_who.user);
    // Made for all, so that it takes no time that tells something.
    const stored_hash_t decoy =
        stored_hash_t::decoy(accounts.usual_iterations(seed_of(digests.make(_who.user, {}))));
    password_check_t check{_digest, _who, password_key_t(_password),
                           account != nullptr ? account->hash : decoy,
                           account != nullptr ? account->life : 0};
    if (may_compare_here(check.hash.iterations, _now)) {
        return compare_here(check, _now);
    }
    for (const visitor_t& other : worker.submit(std::move(check))) {
        events->note(event_kind_t::unchecked, other, {}, _now.wall);
    }
    return verdict_t::later;
}

bool doorkeeper_t::may_compare_here(std::uint32_t _iterations, const moment_t& _now) {
    return _iterations <= account_table_t::cheap_iterations ||
           (worker.is_idle() && budget.allows(worker.estimate(_iterations), _now.steady));
}

doorkeeper_t::verdict_t doorkeeper_t::compare_here(const password_check_t& _check,
                                                   const moment_t& _now) {
    using std::chrono::steady_clock;
    const auto begin = steady_clock::now();
    const bool right = _check.hash.matches(_check.password) && _check.life != 0;
    const auto took = steady_clock::now() - begin;
    if (_check.hash.iterations > account_table_t::cheap_iterations) {
        budget.spend(std::chrono::duration_cast<time_budget_t::span_t>(took));
        worker.learn(_check.hash.iterations, took);
    }
    take_over({_check.digest, _check.visitor, _check.life, right}, _now);
    return right ? verdict_t::right : verdict_t::wrong;
}

void doorkeeper_t::settle(const moment_t& _now) {
    for (const password_verdict_t& verdict : worker.take()) {
        take_over(verdict, _now);
    }
}

void doorkeeper_t::take_over(const password_verdict_t& _verdict, const moment_t& _now) {
    if (!_verdict.right) {
        wrong.add(_verdict.digest, _verdict.life, _now.steady);
        events->note(event_kind_t::failed, _verdict.visitor, "password", _now.wall);
        return;
    }
    account_t* const account = accounts.find(_verdict.visitor.user);
    if (account != nullptr && account->life == _verdict.life) {
        account->good_password = _verdict.digest;
    }
}

}  // namespace broker::plugin

#include "broker/plugin/account_table_t.h"

#include "broker/plugin/control_message_t.h"

namespace broker::plugin {

namespace {
/// What an unknown name costs while no account is expensive: the host's own default.
constexpr std::uint32_t default_iterations = 5'000;
}  // namespace

std::vector<std::string> account_table_t::apply(const control_message_t& _message) {
    std::vector<std::string> ended;
    if (_message.kind == control_message_t::kind_t::all) {
        std::vector<std::string> missing;
        for (const auto& [name, account] : accounts) {
            if (_message.users.count(name) == 0) {
                missing.push_back(name);
            }
        }
        for (const std::string& name : missing) {
            remove(name, &ended);
        }
        told = true;
    }
    for (const std::string& name : _message.removed) {
        remove(name, &ended);
    }
    for (const auto& [name, hash] : _message.users) {
        put(name, hash, &ended);
    }
    return ended;
}

account_t* account_table_t::find(std::string_view _name) {
    const auto found = accounts.find(_name);
    return found == accounts.end() ? nullptr : &found->second;
}

std::uint32_t account_table_t::usual_iterations(std::uint64_t _seed) const {
    if (expensive_accounts == 0) {
        return default_iterations;
    }
    auto place = std::int64_t(_seed % expensive_accounts);
    for (const auto& [iterations, many] : expensive) {
        place -= many;
        if (place < 0) {
            return iterations;
        }
    }
    return default_iterations;
}

void account_table_t::put(const std::string& _name, const stored_hash_t& _hash,
                          std::vector<std::string>* _ended) {
    if (const account_t* const former = find(_name)) {
        if (former->hash == _hash) {
            return;
        }
        remove(_name, _ended);
    }
    accounts.emplace(_name, account_t{_hash, ++last_life, {}});
    count(_hash.iterations, 1);
}

void account_table_t::remove(const std::string& _name, std::vector<std::string>* _ended) {
    const auto found = accounts.find(_name);
    if (found == accounts.end()) {
        return;
    }
    count(found->second.hash.iterations, -1);
    accounts.erase(found);
    _ended->push_back(_name);
}

void account_table_t::count(std::uint32_t _iterations, int _change) {
    if (_iterations <= cheap_iterations) {
        return;
    }
    expensive_accounts += std::uint64_t(std::int64_t(_change));
    if ((expensive[_iterations] += _change) == 0) {
        expensive.erase(_iterations);
    }
}

}  // namespace broker::plugin

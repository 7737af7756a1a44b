#include <string_view>

#include "broker/plugin/account_name.h"
#include "broker/plugin/account_table_t.h"
#include "broker/plugin/control_message_t.h"
#include "fuzz/fuzz_input.h"

using namespace broker::plugin;

namespace {

/// What was told before the input comes.
constexpr std::string_view before =
    "all 1\nuser alice $7$1$MDEyMzQ1Njc4OWFi$aGhoaGhoaGhoaGhoaGhoaGhoaGhoaGhoaGhoaGho"
    "aGhoaGhoaGhoaGhoaGhoaGhoaGhoaGhoaGhoaGhoaGhoaA==\nend\n";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    const std::string_view text(reinterpret_cast<const char*>(_data), _size);
    const control_message_t message = control_message_t::parse(text);
    for (const auto& [name, hash] : message.users) {
        FUZZ_EXPECT(is_account_name(name));
        FUZZ_EXPECT(hash.iterations > 0 && hash.iterations <= stored_hash_t::most_iterations);
    }
    for (const auto* const names : {&message.removed, &message.withdrawn}) {
        for (const std::string& name : *names) {
            FUZZ_EXPECT(is_account_name(name));
        }
    }
    if (!message.refused.empty()) {
        return 0;
    }
    account_table_t table;
    table.apply(control_message_t::parse(before));
    FUZZ_EXPECT(table.size() == 1);
    const auto ended = table.apply(message);
    const bool is_all = message.kind == control_message_t::kind_t::all;
    FUZZ_EXPECT(table.size() >= message.users.size());
    FUZZ_EXPECT(!is_all || table.size() == message.users.size());
    FUZZ_EXPECT(ended.size() <= 1);  // nobody else was there
    FUZZ_EXPECT(table.apply(message).empty() || !message.removed.empty());
    return 0;
}

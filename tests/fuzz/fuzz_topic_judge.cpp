#include <string>
#include <string_view>

#include "broker/plugin/account_name.h"
#include "broker/plugin/topic_judge.h"
#include "fuzz/fuzz_input.h"

using namespace broker::plugin;

namespace {

constexpr std::string_view connection = "home/1/connection";

/// A topic that the filter matches: its wildcards replaced.
std::string topic_of(std::string_view _filter) {
    std::string topic;
    for (const char letter : _filter) {
        topic += letter == '+'   ? std::string("bob")
                 : letter == '#' ? "bob/x"
                                 : std::string(1, letter);
    }
    return topic;
}

/// What is in the user's tree by another way of looking: the root as one text.
bool is_own(std::string_view _user, std::string_view _topic) {
    const std::string root = "local/api/v1/" + std::string(_user);
    return _topic == root || _topic.substr(0, root.size() + 1) == root + "/";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    const std::string_view text(reinterpret_cast<const char*>(_data), _size);
    const std::string_view user = text.substr(0, text.find('\n'));
    const std::string_view topic =
        user.size() < text.size() ? text.substr(user.size() + 1) : std::string_view();
    if (!is_account_name(user)) {
        return 0;
    }
    FUZZ_EXPECT(!may_write(user, topic, true));
    FUZZ_EXPECT(!may_write(user, topic, false) || is_own(user, topic));
    FUZZ_EXPECT(!may_write(user, topic, false) || may_read(user, topic, {}));
    FUZZ_EXPECT(may_read(user, topic, connection) == (is_own(user, topic) || topic == connection));
    if (!may_subscribe(user, topic, connection)) {
        return 0;
    }
    std::string_view filter = topic;
    if (filter.substr(0, 7) == "$share/") {
        filter.remove_prefix(7);
        filter.remove_prefix(filter.find('/') + 1);
        FUZZ_EXPECT(is_own(user, filter));
    }
    FUZZ_EXPECT(may_read(user, topic_of(filter), connection));
    return 0;
}

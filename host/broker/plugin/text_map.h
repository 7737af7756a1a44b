#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace broker::plugin {

struct text_hash_t {
    using is_transparent = void;
    std::size_t operator()(std::string_view _text) const {
        return std::hash<std::string_view>()(_text);
    }
};

/// A hash table by text that can be searched with a view.
template <class Value>
using text_map_t = std::unordered_map<std::string, Value, text_hash_t, std::equal_to<>>;

}  // namespace broker::plugin

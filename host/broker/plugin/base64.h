#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace broker::plugin {

/// The bytes that @p _text stands for. Nothing: it is not base 64 with its padding.
std::optional<std::string> from_base64(std::string_view _text);

}  // namespace broker::plugin

#pragma once

#include <string>
#include <string_view>

namespace broker::plugin {

/// @p _text as one field of a line: everything but printable ASCII, the blank and '%' included, as
/// '%' and two hexadecimal digits; "-" stands for an empty text. Cut to @p _longest bytes first.
std::string report_field(std::string_view _text, std::size_t _longest = 256);

}  // namespace broker::plugin

#pragma once

#include <QLatin1String>

/// The words of entry_t::operation and of some results. Scripts read them; keep them.
namespace audit {

namespace operation {

inline constexpr QLatin1String read("read");
inline constexpr QLatin1String write("write");
inline constexpr QLatin1String request("request");      ///< neither of them
inline constexpr QLatin1String publish("publish");      ///< what the broker refused
inline constexpr QLatin1String subscribe("subscribe");  ///< the same
inline constexpr QLatin1String sign_in("sign-in");
inline constexpr QLatin1String departure("departure");
inline constexpr QLatin1String grant("grant");
inline constexpr QLatin1String user("user");
inline constexpr QLatin1String password("password");
inline constexpr QLatin1String setting("setting");
inline constexpr QLatin1String start("start");
inline constexpr QLatin1String stop("stop");
inline constexpr QLatin1String lost("lost");  ///< what could not be told one by one or at all

}  // namespace operation

namespace result {

inline constexpr QLatin1String ok("ok");
inline constexpr QLatin1String accepted("202");
inline constexpr QLatin1String refused("refused");

}  // namespace result

/// Who else than an API user changes something.
inline constexpr QLatin1String by_database("database");

}  // namespace audit

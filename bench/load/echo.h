#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bench {

/// The number in "uuid":"<number>" of a request or an answer, which is found from the end; -1:
/// none.
long uuid_in(std::string_view _payload);

/// An answer of @p _bytes in all, with the request's uuid: {"data":"...","uuid":"<number>"}.
std::string echo_payload(std::string_view _request, std::size_t _bytes);

/// A state of @p _bytes with this value:
/// {"data":{"functions":{"execute":{"value":"<number>"}},...}}.
std::string state_payload(long _value, std::size_t _bytes);
/// Of "user0", "user1" and so on.
std::string state_topic(int _user, std::string_view _element);
/// The number in "value":"<number>", or in "execute":"<number>" of a write; -1: none.
long value_in(std::string_view _payload);

/// Where it goes. As the server answers, which is the host's account's right:
/// .../CLIENT/request/... -> .../CLIENT/status/...; or where a user may answer itself:
/// .../CLIENT/request/... -> .../re-CLIENT/request/...
enum class echo_way_t { as_server, as_user };
std::string echo_topic(std::string_view _request_topic, std::string_view _client, echo_way_t _way);

}  // namespace bench

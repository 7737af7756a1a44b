#include "system/support/troubles.h"

#include "kit/guessers_t.h"
#include "kit/password_of.h"
#include "kit/raw_mqtt_t.h"
#include "kit/strangers_t.h"
#include "system/support/flood_t.h"

using namespace kit;

namespace support {

namespace {

constexpr const char* lists = "get/elements/objects_list";
constexpr const char* one_lamp = "set/elements/objects_list/e-5";

std::shared_ptr<void> flood(const host_process_t& _host, const QByteArray& _user,
                            const QByteArray& _verb, const QByteArray& _payload,
                            bool _subscribes = false) {
    auto made = std::make_shared<flood_t>(
        _host.port(),
        flood_t::plan_t{QString::fromLatin1(_user),
                        "local/api/v1/" + _user + "/me/request/" + _verb, _payload, _subscribes});
    return made->wait_until_running() ? made : nullptr;
}

trouble_t flood_of(const char* _name, const QByteArray& _user, const char* _verb,
                   const QByteArray& _payload, bool _subscribes = false) {
    return {_name, [=](const host_process_t& _host) {
                return flood(_host, _user, _verb, _payload, _subscribes);
            }};
}

QByteArray write_of(const QByteArray& _value) {
    return "{\"data\":{\"functions\":{\"execute\":" + _value + "}}}";
}

QByteArray filter_of(int _entries) {
    return "{\"filters\":{\"types\":[" + QByteArray("1,").repeated(_entries) + "1]}}";
}

/// A session that has asked for every state of its user and is gone.
bool leave_session(const host_process_t& _host, const QByteArray& _user, int _number) {
    raw_mqtt_t client(raw_mqtt_t::way_t::tcp, QString::number(_host.port()));
    const int code = client.connect({.name = _user,
                                     .password = password_of(_user).toUtf8(),
                                     .id = _user + "-" + QByteArray::number(_number),
                                     .clean = false,
                                     .expiry = 1'000});
    return code == 0 && client.subscribe("local/api/v1/" + _user + "/status/#") < 128;
}

/// A hundred sessions that others left behind, while every write is another message for each.
std::shared_ptr<void> leave_sessions(const host_process_t& _host) {
    for (const char* user : {"user2", "user3", "user4", "user5"}) {
        for (int left = 0, tries = 0; left < 25; ++tries) {
            left += leave_session(_host, user, left) ? 1 : 0;
            if (tries == 1'000) {
                return nullptr;
            }
        }
    }
    return flood(_host, "user0", one_lamp, write_of("7"));
}

}  // namespace

std::vector<trouble_t> floods_of_a_user(const QByteArray& _user) {
    return {
        flood_of("lists that it does not want", _user, lists, "{}"),
        flood_of("lists that it does not read", _user, lists, "{}", true),
        flood_of("writes", _user, one_lamp, write_of("7")),
        flood_of("without any right", "nobody", lists, "{}"),
        flood_of("1 MB filters", _user, lists, filter_of(500'000)),
        flood_of("4 MB filters", _user, lists, filter_of(2'000'000)),
        flood_of("1 MB values", _user, one_lamp, write_of('"' + QByteArray(1'000'000, '9') + '"')),
        flood_of("2 MB values", _user, one_lamp, write_of('"' + QByteArray(2'100'000, '9') + '"')),
        flood_of("3 MB requests", _user, lists, QByteArray(3'000'000, ' ')),
        flood_of("no object", _user, lists, "[1, 2"),
    };
}

std::vector<trouble_t> other_troubles() {
    return {
        {"wrong passwords, 8 sockets",
         [](const host_process_t& _host) {
             return std::make_shared<guessers_t>(_host.port(), "user0");
         }},
        {"50 unfinished CONNECTs of 4 MiB",
         [](const host_process_t& _host) {
             return std::make_shared<strangers_t>(_host.port(), 50,
                                                  strangers_t::unfinished_connect());
         }},
        {"1,300 silent sockets",
         [](const host_process_t& _host) {
             return std::make_shared<strangers_t>(_host.port(), 1'300);
         }},
        {"100 sessions left behind, and writes", leave_sessions},
    };
}

}  // namespace support

#include "api_account.h"

#include <QHostAddress>

#include "control/protocol.h"
#include "database/name_rules.h"
#include "given_password.h"
#include "installation/password_error.h"
#include "live_question.h"
#include "option_values.h"
#include "program/say.h"

namespace torlan {

using base::result_t;

namespace {

constexpr int most_seconds = 3600;
constexpr int most_port = 65535;
const QString loopback = QStringLiteral("127.0.0.1");

/// A whole number of a range; the target stays where the option is not given.
result_t take_number(const call_t& _call, const char* _option, int _most, int* _target) {
    const result_t taken = take_whole(_call, _option, _target);
    return taken.is_ok() && (*_target < 1 || *_target > _most)
               ? result_t::failed(QStringLiteral("--%1 takes 1 to %2, not %3.")
                                      .arg(QLatin1String(_option))
                                      .arg(_most)
                                      .arg(*_target))
               : taken;
}

/// The broker of the folder's server.
outcome_t find_server(const call_t& _call, api_account_t* _account) {
    control::control_client_t client(_call.data);
    const auto status =
        first_answer(&client, _call.data, {{QStringLiteral("ask"), control::ask_status()}});
    if (!status.is_ok()) {
        return {status_silent,
                status.error + QStringLiteral(" Another one is named by --host and --port.")};
    }
    const QJsonObject mqtt = status.value.value(QLatin1String("mqtt")).toObject();
    const QJsonObject broker = status.value.value(QLatin1String("broker")).toObject();
    // Whoever else has its port meanwhile is told no password.
    if (!broker.value(QLatin1String("running")).toBool()) {
        return {status_silent,
                QStringLiteral("The server on %1 has no broker that runs: see torlanctl status.")
                    .arg(_call.data)};
    }
    _account->host = mqtt.value(QLatin1String("address")).toString();
    _account->port = quint16(mqtt.value(QLatin1String("port")).toInt());
    return {};
}

outcome_t find_place(const call_t& _call, api_account_t* _account) {
    if (!_call.has("host") && !_call.has("port")) {
        return find_server(_call, _account);
    }
    int port = _account->port;
    if (const result_t taken = take_number(_call, "port", most_port, &port); !taken.is_ok()) {
        return {status_usage, taken.error};
    }
    _account->host = _call.has("host") ? _call["host"] : loopback;
    _account->port = quint16(port);
    _account->ca_file = _call["ca-file"];
    const bool is_here =
        _account->host == QLatin1String("localhost") || QHostAddress(_account->host).isLoopback();
    if (!is_here && _account->ca_file.isEmpty()) {
        say(stderr, QStringLiteral("The password goes to %1 unencrypted; --ca-file encrypts.")
                        .arg(_account->host));
    }
    return {};
}

}  // namespace

const QList<option_t>& account_options() {
    static const QList<option_t> options{
        {"user", "USER", "the API user"},
        password_file_option,
        {"host", "HOST", "the broker's machine; this one unless it is given"},
        {"port", "N", "the broker's port; that of the server that runs on the data folder"},
        {"ca-file", "FILE", "certificates that the broker's has to come from: TLS"},
        {"wait", "SECONDS", "how long to wait for each answer; 5 unless it is given"},
    };
    return options;
}

outcome_t read_account(const call_t& _call, api_account_t* _account) {
    _account->user = _call["user"];
    if (const QString error = database::identifier_error(_account->user); !error.isEmpty()) {
        return {status_usage, _call.has("user") ? QStringLiteral("The user name %1 %2.")
                                                      .arg(database::quoted(_account->user), error)
                                                : QStringLiteral("--user says who asks.")};
    }
    int seconds = int(std::chrono::seconds(5).count());
    if (const result_t taken = take_number(_call, "wait", most_seconds, &seconds); !taken.is_ok()) {
        return {status_usage, taken.error};
    }
    _account->wait = std::chrono::seconds(seconds);
    if (const outcome_t found = find_place(_call, _account); found.status != status_done) {
        return found;
    }
    const auto password = given_password(_call, database::installation::password_error);
    _account->password = password.value;
    return password;
}

}  // namespace torlan

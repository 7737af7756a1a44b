#include "live_commands.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <chrono>

#include "base/json_text.h"
#include "control/control_client_t.h"
#include "control/protocol.h"
#include "database/name_rules.h"
#include "live_text.h"
#include "program/standard_streams.h"

namespace torlan {

namespace {

using base::result_of_t;
using base::result_t;
using control::control_client_t;

constexpr std::chrono::seconds patience{5};

const QString as_json = QStringLiteral("--json");
const QString following = QStringLiteral("--follow");

result_t check(const char* _command, const QStringList& _arguments, const QStringList& _known) {
    for (const QString& argument : _arguments) {
        if (!_known.contains(argument)) {
            return result_t::failed(QStringLiteral("%1 has no option %2.")
                                        .arg(QLatin1String(_command), database::quoted(argument)));
        }
    }
    return {};
}

/// A clause about the server as a sentence.
result_t sentence(const result_t& _clause) {
    return result_t::failed(_clause.error.left(1).toUpper() + _clause.error.mid(1));
}

/// Asks, and gives the first line of the answer.
result_of_t<QJsonObject> first_line(control_client_t* _client, const QString& _data,
                                    const QJsonObject& _question) {
    const auto serves = _client->has_server();
    if (!serves.is_ok()) {
        return sentence(serves);
    }
    if (!serves.value) {
        return result_t::failed(QStringLiteral("No server runs on %1.").arg(_data));
    }
    const QDeadlineTimer limit(patience);
    const result_t asked = _client->ask(_question, limit);
    auto answer = asked.is_ok() ? _client->next(limit) : result_of_t<QJsonObject>(asked);
    if (!answer.is_ok()) {
        return sentence(answer);
    }
    answer.value.remove(QStringLiteral("version"));
    return answer;
}

result_t write_json(const QJsonObject& _line) {
    return write_output(base::json_to_text(_line) + '\n');
}

result_t write_line(const QString& _line) {
    return write_output(_line.toUtf8() + '\n');
}

result_t write_bus(const QJsonObject& _bus) {
    QString shown = bus_text(_bus);
    for (const QJsonValue& telegram : _bus.value(QLatin1String("telegrams")).toArray()) {
        shown += telegram_text(telegram.toObject()) + QLatin1Char('\n');
    }
    return write_output(shown.toUtf8());
}

result_t write_telegram(QJsonObject _line, bool _as_json) {
    _line.remove(QStringLiteral("version"));
    if (_as_json) {
        return write_json(_line);
    }
    const qint64 lost = _line.value(QLatin1String("lost")).toInteger();
    const result_t told =
        lost > 0 ? write_line(QStringLiteral("%1 were not shown").arg(lost)) : result_t();
    return told.is_ok()
               ? write_line(telegram_text(_line.value(QLatin1String("telegram")).toObject()))
               : told;
}

}  // namespace

result_t check_status_call(const QStringList& _arguments) {
    return check("status", _arguments, {as_json});
}

result_t show_status(const QString& _data, const QStringList& _arguments) {
    control_client_t client(_data);
    const auto status =
        first_line(&client, _data, {{QStringLiteral("ask"), control::ask_status()}});
    if (!status.is_ok()) {
        return status;
    }
    return _arguments.contains(as_json) ? write_json(status.value)
                                        : write_output(status_text(status.value).toUtf8());
}

result_t check_bus_call(const QStringList& _arguments) {
    return check("bus", _arguments, {as_json, following});
}

result_t show_bus(const QString& _data, const QStringList& _arguments) {
    const bool is_json = _arguments.contains(as_json);
    const bool follows = _arguments.contains(following);
    control_client_t client(_data);
    const auto bus = first_line(
        &client, _data,
        {{QStringLiteral("ask"), control::ask_bus()}, {QStringLiteral("follow"), follows}});
    result_t result(bus);
    if (result.is_ok()) {
        result = is_json ? write_json(bus.value) : write_bus(bus.value);
    }
    while (follows && result.is_ok()) {
        const auto line = client.next(QDeadlineTimer::Forever);
        result = line.is_ok() ? write_telegram(line.value, is_json) : sentence(line);
    }
    return result;
}

}  // namespace torlan

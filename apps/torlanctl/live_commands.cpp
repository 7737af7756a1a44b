#include <QDeadlineTimer>
#include <QJsonArray>

#include "base/json_text.h"
#include "commands.h"
#include "control/protocol.h"
#include "live_question.h"
#include "live_text.h"
#include "program/standard_streams.h"

/// What the server that runs on the data folder tells of itself.
namespace torlan {

namespace {

using base::result_of_t;
using base::result_t;
using control::control_client_t;

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

outcome_t show_status(const call_t& _call) {
    control_client_t client(_call.data);
    const auto status =
        first_answer(&client, _call.data, {{QStringLiteral("ask"), control::ask_status()}});
    if (!status.is_ok()) {
        return status;
    }
    return _call.has("json") ? write_json(status.value)
                             : write_output(status_text(status.value).toUtf8());
}

outcome_t show_bus(const call_t& _call) {
    const bool is_json = _call.has("json");
    const bool follows = _call.has("follow");
    control_client_t client(_call.data);
    const auto bus = first_answer(
        &client, _call.data,
        {{QStringLiteral("ask"), control::ask_bus()}, {QStringLiteral("follow"), follows}});
    result_t result(bus);
    if (result.is_ok()) {
        result = is_json ? write_json(bus.value) : write_bus(bus.value);
    }
    while (follows && result.is_ok()) {
        const auto line = client.next(QDeadlineTimer::Forever);
        result = line.is_ok() ? write_telegram(line.value, is_json) : as_sentence(line);
    }
    return result;
}

}  // namespace

commands_t live_commands() {
    return {
        {.name = "status",
         .arguments = "",
         .help = "what the server that runs on it, its broker and its bus are doing",
         .run = show_status,
         .options = {json_option},
         .examples = {QStringLiteral("status"), QStringLiteral("status --json")}},
        {.name = "bus",
         .arguments = "",
         .help = "the bus: link, counters, the last telegrams",
         .run = show_bus,
         .options = {{"follow", "", "go on with each telegram that comes"}, json_option},
         .examples = {QStringLiteral("bus --follow")}},
    };
}

}  // namespace torlan

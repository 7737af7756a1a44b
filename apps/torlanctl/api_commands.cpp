#include <QJsonDocument>

#include "api/element_text.h"
#include "api/refusals.h"
#include "api_account.h"
#include "base/json_text.h"
#include "commands.h"
#include "comunication/api_topics.h"
#include "database/name_rules.h"
#include "output_t.h"
#include "put_command.h"

/// What an API user asks, over MQTT.
namespace torlan {

namespace {

namespace api_topics = comunication::api_topics;

/// "get/elements/objects_list[/ID]"
QString list_path(const QString& _element) {
    const QString list = QStringLiteral("get/elements/objects_list");
    return _element.isEmpty() ? list : list + QLatin1Char('/') + _element;
}

outcome_t refused(const QStringList& _what) {
    return {status_failed,
            QStringLiteral("The API refuses: %1.").arg(_what.join(QStringLiteral("; ")))};
}

/// The whole list, or one element as a list of one.
QJsonObject elements_in(const QJsonObject& _answer, const QString& _element) {
    const QJsonObject data = _answer.value(QLatin1String("data")).toObject();
    return _element.isEmpty() ? data : QJsonObject{{_element, data}};
}

outcome_t write_elements(const QJsonObject& _elements, bool _as_json) {
    output_t output;
    for (auto each = _elements.begin(); each != _elements.end() && output.is_read(); ++each) {
        if (_as_json) {
            output.line(element_json(each.key(), each.value().toObject()));
        } else {
            output.add(element_text(each.key(), each.value().toObject()).toUtf8());
        }
    }
    return output.finish();
}

outcome_t get_elements(const call_t& _call) {
    const QString element = _call["ELEMENT"];
    if (const outcome_t named = check_element(element); !element.isEmpty() && named.status != 0) {
        return named;
    }
    api_account_t account;
    if (const outcome_t read = read_account(_call, &account); read.status != status_done) {
        return read;
    }
    api_session_t session(account);
    QJsonObject answer;
    outcome_t outcome = session.open();
    if (outcome.status == status_done) {
        outcome = session.ask(session.request_topic(list_path(element)), {}, &answer);
    }
    if (outcome.status != status_done) {
        return outcome;
    }
    const QStringList errors =
        refusals(answer, element.isEmpty() ? about_t::list : about_t::one_element);
    return errors.isEmpty() ? write_elements(elements_in(answer, element), _call.has("json"))
                            : refused(errors);
}

/// The whole topic of what was typed; empty: it is none that could be asked on.
QString whole_topic(const QString& _typed, const api_session_t& _session) {
    const QString word = QLatin1Char('/') + api_topics::request_word + QLatin1Char('/');
    const bool is_whole = _typed.startsWith(api_topics::root + QLatin1Char('/'));
    const bool is_topic = !_typed.isEmpty() && !_typed.contains(QLatin1Char('+')) &&
                          !_typed.contains(QLatin1Char('#')) && _typed.isValidUtf16();
    if (!is_topic || (is_whole && !_typed.contains(word))) {
        return {};
    }
    return is_whole ? _typed : _session.request_topic(_typed);
}

about_t about_of(const QString& _topic) {
    return _topic.endsWith(QLatin1String("/objects_list")) ? about_t::list : about_t::one_element;
}

outcome_t ask_request(const call_t& _call) {
    const QJsonDocument question =
        QJsonDocument::fromJson(_call.has("JSON") ? _call["JSON"].toUtf8() : QByteArray("{}"));
    if (!question.isObject()) {
        return {status_usage,
                QStringLiteral("%1 is no JSON object.").arg(database::quoted(_call["JSON"]))};
    }
    api_account_t account;
    if (const outcome_t read = read_account(_call, &account); read.status != status_done) {
        return read;
    }
    api_session_t session(account);
    const QString topic = whole_topic(_call["TOPIC"], session);
    if (topic.isEmpty()) {
        return {status_usage,
                QStringLiteral("%1 is no topic of a request, such as get/elements/objects_list.")
                    .arg(database::quoted(_call["TOPIC"]))};
    }
    QJsonObject answer;
    outcome_t outcome = session.open();
    if (outcome.status == status_done) {
        outcome = session.ask(topic, question.object(), &answer);
    }
    if (outcome.status != status_done) {
        return outcome;
    }
    output_t output;
    output.line(answer);
    const base::result_t written = output.finish();
    const QStringList errors = refusals(answer, about_of(topic));
    return written.is_ok() && !errors.isEmpty() ? refused(errors) : outcome_t(written);
}

}  // namespace

commands_t api_commands() {
    const QString as_alice = QStringLiteral(" --user alice");
    return {
        {.name = "get",
         .arguments = "[ELEMENT]",
         .help = "read elements as an API user",
         .run = get_elements,
         .options = account_options() + QList<option_t>{json_option},
         .examples = {QStringLiteral("get") + as_alice,
                      QStringLiteral("get e-kitchen-ceiling --json") + as_alice},
         .more = "The password is asked for, or read from standard input or --password-file."},
        {.name = "put",
         .arguments = "ELEMENT FUNCTION=VALUE...",
         .help = "write functions of an element as an API user",
         .run = put_functions,
         .options = account_options() +
                    QList<option_t>{
                        {"confirm", "", "wait for the values that come back, not only for \"202\""},
                        json_option},
         .examples = {QStringLiteral("put e-kitchen-ceiling execute=1 --confirm") + as_alice,
                      QStringLiteral("put e-living-thermostat thermo/setpoint=21.5") + as_alice},
         .more = "Whole numbers are sent as texts, which keep all digits; other numbers have six "
                 "when they come back."},
        {.name = "request",
         .arguments = "TOPIC [JSON]",
         .help = "ask anything as an API user, and print the answer",
         .run = ask_request,
         .options = account_options(),
         .examples = {QStringLiteral("request get/elements/objects_list "
                                     "'{\"filters\": {\"types\": [17]}}'") +
                      as_alice},
         .more = "TOPIC is what follows \"request/\", or a whole one that begins with local/api/."},
    };
}

}  // namespace torlan

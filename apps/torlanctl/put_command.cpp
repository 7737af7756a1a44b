#include "put_command.h"

#include <algorithm>

#include "api/readings_t.h"
#include "api/refusals.h"
#include "api/written_value.h"
#include "api_account.h"
#include "database/name_rules.h"
#include "output_t.h"

namespace torlan {

namespace {

/// One write, and what becomes of it.
class write_t {
 public:
    write_t(const QString& _element, const QList<assignment_t>& _assignments,
            api_session_t* _session)
        : element(_element), assignments(_assignments), session(_session) {
        QObject::connect(session, &api_session_t::state, session,
                         [this](const QString& _of, const QJsonObject& _data) {
                             readings.take_state(_of, _data);
                         });
    }

    /// Knows the values from now on, if the user may read them.
    outcome_t begin_reading() {
        outcome_t outcome = session->follow(element);
        if (outcome.status != status_done) {
            return outcome;
        }
        readings.begin_read();
        QJsonObject answer;
        outcome = ask("get", {}, &answer);
        if (outcome.status == status_done) {
            unreadable = refusals(answer, about_t::one_element);
            const QJsonValue data = answer.value(QLatin1String("data"));
            readings.take_all(unreadable.isEmpty() ? QJsonObject{{element, data}} : QJsonObject());
        }
        return outcome;
    }

    outcome_t write() {
        const QJsonObject data{{QStringLiteral("functions"), written_functions(assignments)}};
        QJsonObject answer;
        const outcome_t asked = ask("set", {{QStringLiteral("data"), data}}, &answer);
        const QStringList errors = refusals(answer, about_t::one_element);
        return asked.status != status_done || errors.isEmpty()
                   ? asked
                   : outcome_t(status_failed, QStringLiteral("The API refuses to write %1: %2.")
                                                  .arg(element, errors.join(QStringLiteral("; "))));
    }

    outcome_t confirm(std::chrono::milliseconds _limit) {
        if (!unreadable.isEmpty()) {
            return {status_unconfirmed,
                    QStringLiteral("%1 was written, but what comes of it is not to be read: %2.")
                        .arg(element, unreadable.join(QStringLiteral("; ")))};
        }
        const bool is_there =
            session->wait(_limit, [this]() { return missing().isEmpty() || !session->is_open(); });
        const QStringList left = missing();
        if (is_there && left.isEmpty()) {
            return {};
        }
        return {status_unconfirmed,
                QStringLiteral("%1 was written, but the value did not come: %2.")
                    .arg(element, left.join(QStringLiteral("; ")))};
    }

    QString value(const QString& _function) const {
        return readings.values(element).value(_function);
    }

 private:
    outcome_t ask(const char* _verb, const QJsonObject& _question, QJsonObject* _answer) {
        return session->ask(
            session->request_topic(
                QStringLiteral("%1/elements/objects_list/%2").arg(QLatin1String(_verb), element)),
            _question, _answer);
    }

    /// "level is 20, not 30", of each that is.
    QStringList missing() const {
        QStringList left;
        for (const assignment_t& each : assignments) {
            if (!comes_of(value(each.function), each.value)) {
                left.append(QStringLiteral("%1 is %2, not %3")
                                .arg(database::shown(each.function),
                                     database::quoted(value(each.function)),
                                     database::quoted(each.value)));
            }
        }
        return left;
    }

    const QString element;
    const QList<assignment_t> assignments;
    api_session_t* const session;
    readings_t readings;
    QStringList unreadable;
};

outcome_t write_results(const call_t& _call, const QList<assignment_t>& _assignments,
                        const write_t& _write) {
    const bool is_confirmed = _call.has("confirm");
    output_t output;
    for (const assignment_t& each : _assignments) {
        const QString value = is_confirmed ? _write.value(each.function) : each.value;
        if (_call.has("json")) {
            output.line(QJsonObject{{QStringLiteral("element"), _call["ELEMENT"]},
                                    {QStringLiteral("function"), each.function},
                                    {QStringLiteral("value"), value},
                                    {QStringLiteral("confirmed"), is_confirmed}});
        } else {
            output.line(QStringLiteral("%1 %2 %3 %4")
                            .arg(_call["ELEMENT"], database::shown(each.function),
                                 is_confirmed ? QStringLiteral("is") : QStringLiteral("is to be"),
                                 database::shown(value)));
        }
    }
    return output.finish();
}

}  // namespace

outcome_t check_element(const QString& _element) {
    const QString error = database::identifier_error(_element);
    return error.isEmpty()
               ? outcome_t()
               : outcome_t(
                     status_usage,
                     QStringLiteral("The element %1 %2.").arg(database::quoted(_element), error));
}

outcome_t put_functions(const call_t& _call) {
    outcome_t outcome = check_element(_call["ELEMENT"]);
    const auto assignments = assignments_of(_call.all("FUNCTION=VALUE"));
    if (outcome.status == status_done && !assignments.is_ok()) {
        outcome = {status_usage, assignments.error};
    }
    api_account_t account;
    if (outcome.status == status_done) {
        outcome = read_account(_call, &account);
    }
    if (outcome.status != status_done) {
        return outcome;
    }
    api_session_t session(account);
    write_t write(_call["ELEMENT"], assignments.value, &session);
    outcome = session.open();
    if (outcome.status == status_done && _call.has("confirm")) {
        outcome = write.begin_reading();
    }
    if (outcome.status == status_done) {
        outcome = write.write();
    }
    if (outcome.status == status_done && _call.has("confirm")) {
        outcome = write.confirm(account.wait);
    }
    return outcome.status == status_done ? write_results(_call, assignments.value, write) : outcome;
}

}  // namespace torlan

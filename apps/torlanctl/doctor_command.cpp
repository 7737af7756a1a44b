#include "api_account.h"
#include "commands.h"
#include "control/protocol.h"
#include "doctor/checks.h"
#include "doctor/findings.h"
#include "doctor/health_rules.h"
#include "live_question.h"
#include "output_t.h"

namespace torlan {

namespace {

/// The server compares at most so long.
constexpr std::chrono::seconds retained_patience{20};

finding_t retained_finding(const QString& _data) {
    control::control_client_t client(_data);
    const auto answer = first_answer(
        &client, _data, {{QStringLiteral("ask"), control::ask_retained()}}, retained_patience);
    return answer.is_ok()
               ? health_rules::retained(answer.value)
               : finding_t{QStringLiteral("retained"), health_t::unchecked, answer.error};
}

findings_t user_findings(const call_t& _call) {
    if (!_call.has("user")) {
        return {
            {QStringLiteral("rights"), health_t::unchecked,
             QStringLiteral("what a user may do: needs --user, and was tried by the server when "
                            "it started")}};
    }
    api_account_t account;
    const outcome_t read = read_account(_call, &account);
    return read.status == status_done
               ? rights_findings(account)
               : findings_t{{QStringLiteral("rights"), health_t::problem, read.error}};
}

findings_t live_findings(const call_t& _call, const base::result_of_t<QJsonObject>& _status) {
    if (!_status.is_ok()) {
        return {
            {QStringLiteral("server"), health_t::unchecked,
             QStringLiteral("ports, rights, retained states and versions. %1").arg(_status.error)}};
    }
    findings_t found = server_findings(_status.value);
    if (verdict_of(health_rules::server(_status.value)) != health_t::problem &&
        _status.value.contains(QLatin1String("broker"))) {
        const QJsonValue mqtt = _status.value.value(QLatin1String("mqtt"));
        found += sign_in_findings(mqtt[QLatin1String("address")].toString(),
                                  quint16(mqtt[QLatin1String("port")].toInt()));
        found += user_findings(_call);
        found.append(retained_finding(_call.data));
    }
    return found;
}

outcome_t examine(const call_t& _call) {
    findings_t found = folder_findings(_call.data);
    control::control_client_t client(_call.data);
    const auto status =
        first_answer(&client, _call.data, {{QStringLiteral("ask"), control::ask_status()}});
    found += live_findings(_call, status) + machine_findings(_call.data, status.value);
    output_t output;
    for (const finding_t& finding : std::as_const(found)) {
        if (_call.has("json")) {
            output.line(finding_json(finding));
        } else {
            output.line(finding_text(finding));
        }
    }
    if (_call.has("json")) {
        output.line(verdict_json(found));
    } else {
        output.line(verdict_text(found));
    }
    const base::result_t written = output.finish();
    return written.is_ok() && verdict_of(found) == health_t::problem ? outcome_t(status_failed, {})
                                                                     : outcome_t(written);
}

}  // namespace

commands_t doctor_commands() {
    return {
        {.name = "doctor",
         .arguments = "",
         .help = "look at everything that may be wrong, and change nothing",
         .run = examine,
         .options = account_options() + QList<option_t>{json_option},
         .examples = {QStringLiteral("doctor"), QStringLiteral("doctor --user alice --json")},
         .more = "Status 1 means that there is a problem; warnings are none. With --user what that "
                 "user may do at the broker is tried, too. A server that does not run is no "
                 "problem: what cannot be looked at then is said."},
    };
}

}  // namespace torlan

#include <QCoreApplication>

#include "commands.h"
#include "effect.h"
#include "line/help_text.h"
#include "line/parse_call.h"
#include "meant_name.h"
#include "program/begin_program.h"
#include "program/say.h"
#include "program/standard_streams.h"
#include "program/version.h"

namespace torlan {

namespace {

/// Help or version, where they are asked for; empty: neither.
QString to_show(const call_t& _call) {
    if (_call.has("version")) {
        return version_text();
    }
    if (!_call.has("help")) {
        return {};
    }
    if (_call.command != nullptr) {
        return help_of_command(*_call.command);
    }
    return _call.group.isEmpty() ? help_of_program(commands())
                                 : help_of_group(_call.group, commands());
}

/// Runs a command, and waits until what it changed is effective.
outcome_t run(const call_t& _call) {
    outcome_t outcome = _call.command->run(_call);
    if (outcome.status == status_failed) {
        outcome.error = with_meant_name(_call, outcome.error);
    }
    if (outcome.status != status_done || _call.command->on != works_on_t::changed_installation) {
        return outcome;
    }
    const base::result_t followed = await_effect(_call.data);
    return followed.is_ok() ? outcome_t() : outcome_t(status_stored, followed.error);
}

outcome_t answer(const QStringList& _words) {
    const auto call = parse_call(_words, commands());
    if (!call.is_ok()) {
        return {status_usage, call.error};
    }
    const QString shown = to_show(call.value);
    return shown.isEmpty() ? run(call.value) : outcome_t(write_output(shown.toUtf8()));
}

}  // namespace

}  // namespace torlan

int main(int _argc, char* _argv[]) {
    using namespace torlan;
    begin_program(QStringLiteral("torlanctl"));
    const QCoreApplication application(_argc, _argv);
    const outcome_t outcome = answer(QCoreApplication::arguments().mid(1));
    if (!outcome.error.isEmpty()) {
        say(stderr,
            outcome.error +
                QLatin1String(outcome.status == status_usage ? " See torlanctl --help." : ""));
    }
    return outcome.status;
}

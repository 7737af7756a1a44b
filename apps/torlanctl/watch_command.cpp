#include <unistd.h>

#include "api/change_text.h"
#include "api/live_output_t.h"
#include "api/watcher_t.h"
#include "api_account.h"
#include "commands.h"
#include "program/say.h"
#include "program/stop_signals_t.h"
#include "put_command.h"

namespace torlan {

namespace {

colours_t colours() {
    return ::isatty(STDOUT_FILENO) != 0 && qEnvironmentVariableIsEmpty("NO_COLOR")
               ? colours_t::ansi
               : colours_t::none;
}

outcome_t watch(const call_t& _call, const api_account_t& _account) {
    const bool is_json = _call.has("json");
    const colours_t shown_in = colours();
    QString error;
    watcher_t watcher(_account, _call.all("ELEMENT"));
    live_output_t output(STDOUT_FILENO);
    const stop_signals_t stop_signals;
    QObject::connect(&stop_signals, &stop_signals_t::stop_asked, &watcher, &watcher_t::stop);
    QObject::connect(&output, &live_output_t::ended, &watcher, [&](const QString& _error) {
        error = _error;
        watcher.stop();
    });
    QObject::connect(&output, &live_output_t::left_out, &watcher, [](qint64 _lines) {
        say(stderr, QStringLiteral("%1 changes were not shown: nobody read.").arg(_lines));
    });
    QObject::connect(&watcher, &watcher_t::noted, &output,
                     [](const QString& _sentence) { say(stderr, _sentence); });
    QObject::connect(
        &watcher, &watcher_t::changed, &output, [&](const readings_t::change_t& _change) {
            const QDateTime now = QDateTime::currentDateTimeUtc();
            output.add(is_json ? change_json(_change, now) : change_text(_change, now, shown_in));
        });
    const outcome_t outcome = watcher.run();
    return error.isEmpty()
               ? outcome
               : outcome_t(status_failed, QStringLiteral("Standard output: %1.").arg(error));
}

outcome_t watch_elements(const call_t& _call) {
    for (const QString& element : _call.all("ELEMENT")) {
        if (const outcome_t named = check_element(element); named.status != status_done) {
            return named;
        }
    }
    api_account_t account;
    const outcome_t read = read_account(_call, &account);
    return read.status == status_done ? watch(_call, account) : read;
}

}  // namespace

commands_t watch_commands() {
    return {
        {.name = "watch",
         .arguments = "ELEMENT...",
         .help = "show values of elements as an API user, and each change as it happens",
         .run = watch_elements,
         .options = account_options() + QList<option_t>{json_option},
         .examples = {QStringLiteral("watch --user alice"),
                      QStringLiteral("watch e-kitchen-ceiling --json --user alice")},
         .more =
             "Ctrl-C ends it with status 0. A connection that is gone is made again; refused then, "
             "it goes on trying for ten times --wait."},
    };
}

}  // namespace torlan

#include <QCoreApplication>

#include "options_t.h"
#include "page_server_t.h"
#include "program/begin_program.h"
#include "program/exit_status_t.h"
#include "program/privileges.h"
#include "program/say.h"
#include "program/standard_streams.h"
#include "program/stop_signals_t.h"
#include "program/supervisor_link_t.h"

namespace torlan {

namespace {

int fail(const QString& _sentence) {
    say(stderr, _sentence);
    return status_failed;
}

int serve(const options_t& _options) {
    QString told;
    const base::result_t allowed = give_up_privileges(_options.user, {}, &told);
    if (!allowed.is_ok()) {
        return fail(allowed.error);
    }
    const stop_signals_t stop_signals;
    QObject::connect(&stop_signals, &stop_signals_t::stop_asked, &QCoreApplication::quit);
    const supervisor_link_t supervisor(_options.supervisor);
    QObject::connect(&supervisor, &supervisor_link_t::supervisor_gone, &QCoreApplication::quit);
    page_server_t server(_options.facts, _options.ws_port);
    const base::result_t started = server.start(_options.pages, _options.port);
    if (!started.is_ok()) {
        return fail(started.error);
    }
    if (supervisor.is_supervised()) {
        supervisor.tell_ready();
    } else {
        say(stdout, QStringLiteral("ready on http://127.0.0.1:%1/").arg(server.serverPort()));
        if (!told.isEmpty()) {
            say(stdout, told);
        }
    }
    return QCoreApplication::exec();
}

}  // namespace

}  // namespace torlan

int main(int _argc, char* _argv[]) {
    using namespace torlan;
    begin_program(QStringLiteral("torlan-web"));
    const QCoreApplication application(_argc, _argv);
    const base::result_of_t<options_t> options = parse_options(QCoreApplication::arguments());
    if (!options.is_ok()) {
        say(stderr, options.error);
        return status_usage;
    }
    if (!options.value.to_show.isEmpty()) {
        write_text(stdout, options.value.to_show);
        return status_done;
    }
    wait_for_no_reader();
    return serve(options.value);
}

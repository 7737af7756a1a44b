#include <linux/capability.h>
#include <sys/stat.h>

#include <QCoreApplication>

#include "host_t.h"
#include "logs/early_logger_t.h"
#include "program/privileges.h"
#include "program/program_main.h"
#include "program/say.h"
#include "program/stop_signals_t.h"
#include "program/supervisor_link_t.h"

namespace torlan {

namespace {

using utility::logs::early_logger_t;

/// Lives until the process ends, by whatever way.
early_logger_t& early_log(const options_t& _options) {
    static early_logger_t logger;
    if (_options.stdout_level) {
        logger.set_level(static_cast<int>(*_options.stdout_level));
    }
    utility::logs::classlogs::setInstance(&logger);
    return logger;
}

/// What root needs to start the broker as an account of its own, end it and clear up behind it.
const QList<int> for_the_broker{CAP_SETUID, CAP_SETGID,       CAP_SETPCAP, CAP_CHOWN,
                                CAP_FOWNER, CAP_DAC_OVERRIDE, CAP_KILL};

/// A queued call wakes GLib's loop by a write to a descriptor each, also in the thread that it is
/// for; Qt's own writes once until the loop has read it. A request is a dozen such calls.
void use_plain_event_loops() {
    qputenv("QT_NO_GLIB", "1");
}

int run(const options_t& _options) {
    QString told;
    const base::result_t allowed = give_up_privileges(_options.user, for_the_broker, &told);
    if (!allowed.is_ok()) {
        say(stderr, allowed.error);
        return status_failed;
    }
    const stop_signals_t stop_signals;
    const supervisor_link_t supervisor(_options.supervisor);
    host_t host(_options, &early_log(_options));
    QObject::connect(&host, &host_t::waiting, &host,
                     [](const QString& _sentence) { say(stdout, _sentence); });
    bool asked = false;
    const auto stop = [&]() {
        asked = true;
        host.break_off();
        QCoreApplication::quit();
    };
    QObject::connect(&stop_signals, &stop_signals_t::stop_asked, &host, stop);
    QObject::connect(&supervisor, &supervisor_link_t::supervisor_gone, &host, stop);
    const base::result_t started = host.start();
    if (asked) {
        return status_done;
    }
    if (!started.is_ok()) {
        say(stderr, started.error);
        return status_failed;
    }
    // Before people and scripts hear it: what they do then must not find a start that goes on.
    supervisor.tell_ready();
    write_text(stdout, host.ready_text());
    if (!told.isEmpty()) {
        say(stdout, told);
    }
    QCoreApplication::exec();
    const base::result_t stopped = host.stop();
    if (!stopped.is_ok()) {
        say(stderr, stopped.error);
        return status_unsaved;
    }
    return status_done;
}

}  // namespace

}  // namespace torlan

int main(int _argc, char* _argv[]) {
    using namespace torlan;
    ::umask(077);
    speak_as(QStringLiteral("torlan"));
    use_plain_event_loops();
    return program_main("torlan-server", _argc, _argv, parse_options, run);
}

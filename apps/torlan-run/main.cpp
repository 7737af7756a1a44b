#include <sys/stat.h>

#include <QCoreApplication>
#include <QDir>

#include "home_t.h"
#include "options_t.h"
#include "program/privileges.h"
#include "program/program_main.h"
#include "program/say.h"
#include "program/stop_signals_t.h"
#include "supervisor_t.h"
#include "web_plan.h"

namespace torlan {

namespace {

int fail(const QString& _sentence) {
    say(stderr, _sentence);
    return status_failed;
}

int supervise(const options_t& _options, const std::optional<web_t>& _web, const QString& _programs,
              const home_t& _home, bool* _is_failed_start) {
    const stop_signals_t stop_signals;
    supervisor_t supervisor(_options, _web, _programs, _home.settings());
    QObject::connect(&supervisor, &supervisor_t::told,
                     [](const QString& _sentence) { say(stderr, _sentence); });
    // Queued: the loop may not run yet.
    QObject::connect(
        &supervisor, &supervisor_t::ended, qApp,
        [](int _status) { QCoreApplication::exit(_status); }, Qt::QueuedConnection);
    QObject::connect(&stop_signals, &stop_signals_t::stop_asked, &supervisor,
                     [&]() { QCoreApplication::exit(supervisor.stop()); });
    supervisor.start();
    const int status = QCoreApplication::exec();
    *_is_failed_start =
        status != status_done && !supervisor.was_ready() && !supervisor.was_stopped();
    return status;
}

int run(const options_t& _options) {
    const QString programs = QCoreApplication::applicationDirPath();
    home_t home(_options.data);
    QObject::connect(&home, &home_t::ending,
                     [](const QString& _sentence) { say(stderr, _sentence); });
    if (const base::result_t made = home.make(_options.user); !made.is_ok()) {
        return fail(made.error);
    }
    // From here on root writes nothing: what lies in the folder of another account can be exchanged
    // by it. Without another account each program keeps what of root it needs.
    if (!_options.user.isEmpty()) {
        if (const base::result_t became = become_account(_options.user); !became.is_ok()) {
            home.take_back();
            return fail(became.error);
        }
    }
    const QString drivers = QDir::cleanPath(programs + QStringLiteral("/../lib/drivers"));
    if (const base::result_t opened = home.open(drivers); !opened.is_ok()) {
        home.take_back();
        return fail(opened.error);
    }
    const auto plan = plan_web(_options, QDir::cleanPath(programs + QStringLiteral("/../web")));
    if (!plan.is_ok()) {
        home.take_back();
        return fail(plan.error);
    }
    for (const QString& sentence : plan.value.told) {
        say(stderr, sentence);
    }
    bool is_failed_start = false;
    const int status = supervise(_options, plan.value.web, programs, home, &is_failed_start);
    if (is_failed_start) {
        home.take_back();  // a first one leaves nothing; one that was asked to end keeps what it
                           // has
    }
    return status;
}

}  // namespace

}  // namespace torlan

int main(int _argc, char* _argv[]) {
    using namespace torlan;
    ::umask(077);
    speak_as(QStringLiteral("torlan"));
    return program_main("torlan-run", _argc, _argv, parse_options, run);
}

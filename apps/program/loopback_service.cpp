#include "program/loopback_service.h"

#include <QCoreApplication>

#include "program/exit_status_t.h"
#include "program/privileges.h"
#include "program/say.h"
#include "program/stop_signals_t.h"
#include "program/supervisor_link_t.h"

namespace torlan {

namespace {

int fail(const QString& _sentence) {
    say(stderr, _sentence);
    return status_failed;
}

}  // namespace

int serve_loopback(const QString& _user, int _supervisor,
                   const std::function<base::result_of_t<quint16>()>& _start) {
    QString told;
    const base::result_t allowed = give_up_privileges(_user, {}, &told);
    if (!allowed.is_ok()) {
        return fail(allowed.error);
    }
    const stop_signals_t stop_signals;
    QObject::connect(&stop_signals, &stop_signals_t::stop_asked, &QCoreApplication::quit);
    const supervisor_link_t supervisor(_supervisor);
    QObject::connect(&supervisor, &supervisor_link_t::supervisor_gone, &QCoreApplication::quit);
    const base::result_of_t<quint16> port = _start();
    if (!port.is_ok()) {
        return fail(port.error);
    }
    if (supervisor.is_supervised()) {
        supervisor.tell_ready();
    } else {
        say(stdout, QStringLiteral("ready on http://127.0.0.1:%1/").arg(port.value));
        if (!told.isEmpty()) {
            say(stdout, told);
        }
    }
    return QCoreApplication::exec();
}

}  // namespace torlan

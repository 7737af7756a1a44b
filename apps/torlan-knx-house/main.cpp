#include <sys/stat.h>

#include <QCoreApplication>

#include "house_link_t.h"
#include "options_t.h"
#include "program/program_main.h"
#include "program/supervisor_link_t.h"
#include "stored_home.h"

namespace torlan {

namespace {

int fail(const QString& _sentence) {
    say(stderr, _sentence);
    return status_failed;
}

int play(const options_t& _options) {
    const supervisor_link_t supervisor(_options.supervisor);
    QObject::connect(&supervisor, &supervisor_link_t::supervisor_gone, qApp,
                     &QCoreApplication::quit);
    const auto home = stored_home(_options.data);
    if (!home.is_ok()) {
        return fail(home.error);
    }
    house_t house(home.value);
    supervisor.tell_ready();
    if (house.is_empty()) {
        say(stderr, QStringLiteral("Nothing of the installation in %1 is on a KNX bus: there are "
                                   "no devices to play.")
                        .arg(_options.data));
        return status_done;
    }
    const house_link_t link(&house, _options.url);
    return QCoreApplication::exec();
}

}  // namespace

}  // namespace torlan

int main(int _argc, char* _argv[]) {
    using namespace torlan;
    ::umask(077);
    return program_main("torlan-knx-house", _argc, _argv, parse_options, play);
}

#include "knx_demo_t.h"

#include <sys/un.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

namespace torlan {

using base::result_t;
using process::inherited_lock_t;
using process::supervised_process_t;

namespace {

constexpr qsizetype longest_socket_path = sizeof(sockaddr_un::sun_path) - 1;
constexpr std::chrono::seconds former_ends_in(5);
/// The kernel does not say when a lock becomes free.
constexpr std::chrono::milliseconds look_again(20);
constexpr std::chrono::seconds restart_longest(5);
constexpr std::chrono::seconds bus_settles_in(1);

/// No bus behind it, an address for each of eight clients, and a memory of what was said last.
QStringList bus_arguments(const QString& _socket) {
    return {QStringLiteral("-e"),      QStringLiteral("0.0.1"), QStringLiteral("-E"),
            QStringLiteral("0.0.2:8"), QStringLiteral("-u"),    _socket,
            QStringLiteral("-c"),      QStringLiteral("-b"),    QStringLiteral("dummy:")};
}

}  // namespace

knx_demo_t::knx_demo_t(const QString& _data, const QString& _programs, QObject* _parent)
    : QObject(_parent),
      data(_data),
      house_program(_programs + QStringLiteral("/torlan-knx-house")),
      socket(_data + QStringLiteral("/knxd.socket")),
      lock(_data + QStringLiteral("/knxd.lock")) {
    set_up_bus();
    set_up_house();
}

void knx_demo_t::set_up_bus() {
    settled.setSingleShot(true);
    settled.setInterval(bus_settles_in);
    connect(&bus, &supervised_process_t::failed, this, [this](const QString& _words) {
        Q_EMIT failed(QStringLiteral("The KNX daemon knxd could not be started: %1.").arg(_words));
    });
    connect(&bus, &supervised_process_t::launched, &settled, qOverload<>(&QTimer::start));
    connect(&bus, &supervised_process_t::died, &settled, &QTimer::stop);
    // knxd does not say that it is ready. Not told when it dies: who ends everything by Ctrl-C ends
    // the children, too.
    connect(&settled, &QTimer::timeout, this, [this]() {
        const bool is_again = bus.state() == supervised_process_t::state_t::restarting;
        if (is_again && bus.set_ready()) {
            Q_EMIT told(QStringLiteral("the KNX daemon had ended and was started again."));
        }
    });
}

void knx_demo_t::set_up_house() {
    connect(&house, &supervised_process_t::failed, this, [this](const QString& _words) {
        if (!_words.isEmpty()) {
            Q_EMIT told(QStringLiteral("the devices could not be started: %1.").arg(_words));
        }
    });
    connect(&house_link, &child_link_t::ready, this, [this](qint64 _process) {
        const bool is_again = house.state() == supervised_process_t::state_t::restarting;
        if (_process == house.process_id() && house.set_ready() && is_again) {
            Q_EMIT told(QStringLiteral("the devices had ended and were started again."));
        }
    });
}

result_t knx_demo_t::check() const {
    // knxd would cut it off, and make a socket elsewhere.
    if (QFile::encodeName(socket).size() > longest_socket_path) {
        return result_t::failed(
            QStringLiteral("The path %1 is too long for a socket.").arg(socket));
    }
    return QFileInfo::exists(house_program)
               ? result_t()
               : result_t::failed(QStringLiteral("There is no %1: this build is one without KNX.")
                                      .arg(house_program));
}

result_t knx_demo_t::take_lock() {
    const QDeadlineTimer limit(former_ends_in);
    inherited_lock_t::state_t state = lock.take();
    while (state == inherited_lock_t::state_t::held && !limit.hasExpired()) {
        QThread::msleep(static_cast<unsigned long>(look_again.count()));
        state = lock.take();
    }
    if (state == inherited_lock_t::state_t::ours) {
        return {};
    }
    return result_t::failed(
        state == inherited_lock_t::state_t::held
            ? QStringLiteral("The KNX daemon of a former start in %1 does not end.").arg(data)
            : QStringLiteral("The folder %1 cannot be written.").arg(data));
}

void knx_demo_t::start() {
    result_t is_possible = check();
    if (is_possible.is_ok()) {
        is_possible = take_lock();
    }
    if (!is_possible.is_ok()) {
        Q_EMIT failed(is_possible.error);
        return;
    }
    process::child_settings_t child;
    child.program = QStringLiteral("knxd");
    child.arguments = bus_arguments(socket);
    child.inherited = {lock.descriptor()};
    child.start_timeout = std::chrono::milliseconds(0);
    child.restart_longest = restart_longest;
    bus.start(child);
}

void knx_demo_t::start_house() {
    bus.set_ready();
    process::child_settings_t child;
    child.program = house_program;
    child.arguments = {QStringLiteral("--supervisor"), QString::number(house_link.descriptor()),
                       QStringLiteral("--data"),       data,
                       QStringLiteral("--knx"),        url()};
    child.inherited = {house_link.descriptor()};
    child.writes_itself = true;
    child.start_timeout = std::chrono::milliseconds(0);
    child.restart_longest = restart_longest;
    house.start(child);
}

void knx_demo_t::stop() {
    house.stop();
    bus.stop();
}

}  // namespace torlan

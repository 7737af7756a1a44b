#include "broker/broker_process_t.h"

#include <QEventLoop>
#include <QStandardPaths>

#include "broker/broker_config_t.h"
#include "logs/log_line.h"

namespace broker {

using accounts::broker_account_t;
using accounts::broker_accounts_t;
using base::result_t;
using process::supervised_process_t;

namespace {

constexpr const char* source = "host/broker/broker_process_t";
const QString configuration_name = QStringLiteral("mosquitto.conf");

QString name_of(const broker_settings_t& _settings) {
    return _settings.executable.isEmpty() ? QStringLiteral("mosquitto") : _settings.executable;
}

QString find_executable(const QString& _name) {
    const QString found = QStandardPaths::findExecutable(_name);
    // A user's PATH often lacks the folders of daemons.
    return found.isEmpty()
               ? QStandardPaths::findExecutable(
                     _name, {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin"),
                             QStringLiteral("/sbin")})
               : found;
}

/// Lines begin with a time stamp in seconds.
QString without_time(const QString& _line) {
    return _line.section(QStringLiteral(": "), 1);
}

}  // namespace

broker_process_t::broker_process_t(const broker_settings_t& _settings, QObject* _parent)
    : QObject(_parent),
      settings(_settings),
      folder(QStringLiteral("broker")),
      who_may({_settings.host_account, _settings.connection_topic}, folder),
      child(this),
      probe(this) {
    set_up_connections();
}

broker_process_t::~broker_process_t() {
    stop();
}

void broker_process_t::set_up_connections() {
    connect(&child, &supervised_process_t::launching, this, [this]() {
        who_may.on_broker_launching();
        probe.wait_for(settings.port);
    });
    connect(&probe, &port_probe_t::listening, this, [this]() {
        // Somebody else may have taken the port between two lives of the broker.
        if (process_id() > 0) {
            who_may.on_broker_listening(process_id());
        }
    });
    connect(&who_may, &broker_accounts_t::effective, this, [this]() {
        if (child.set_ready()) {
            Q_EMIT listening();
        }
    });
    connect(&child, &supervised_process_t::died, this, &broker_process_t::on_died);
    connect(&child, &supervised_process_t::failed, this, &broker_process_t::on_failed);
    connect(&child, &supervised_process_t::said, this, [](const QString& _words) {
        utility::log_line(QStringLiteral("MQTT broker: ") + _words, 3, "operator()", source,
                          __LINE__);
    });
}

result_t broker_process_t::start(const QList<broker_account_t>& _accounts) {
    stop();
    outcome = {};
    const QString executable = find_executable(name_of(settings));
    if (executable.isEmpty()) {
        return result_t::failed(
            QStringLiteral("The MQTT broker \"%1\" is not installed.").arg(name_of(settings)));
    }
    if (const result_t ready = prepare(_accounts); !ready.is_ok()) {
        return ready;
    }
    launch(executable);
    return outcome;
}

result_t broker_process_t::prepare(const QList<broker_account_t>& _accounts) {
    for (const quint16 port : {settings.port, settings.websocket_port}) {
        if (port != 0 && !port_probe_t::is_free(port)) {
            return result_t::failed(
                QStringLiteral("Port %1 of 127.0.0.1 is already in use.").arg(port));
        }
    }
    if (const result_t made = folder.create(settings.system_account); !made.is_ok()) {
        return made;
    }
    const QByteArray text = broker_config_t::configuration(settings, who_may.configuration());
    if (const result_t written = folder.write(configuration_name, text); !written.is_ok()) {
        return written;
    }
    return who_may.apply(_accounts);
}

void broker_process_t::launch(const QString& _executable) {
    child.start({.program = _executable,
                 .arguments = {QStringLiteral("-c"), folder.path(configuration_name)},
                 .account = folder.owner(),
                 .start_timeout = settings.start_timeout,
                 .not_ready = QStringLiteral("it does not listen on port %1").arg(settings.port),
                 .stop_timeout = settings.stop_timeout,
                 .restart_shortest = settings.restart_shortest,
                 .restart_longest = settings.restart_longest,
                 .words = without_time});
}

void broker_process_t::on_died(bool _listened) {
    probe.cancel();
    who_may.on_broker_ended();
    utility::log_line(QStringLiteral("The MQTT broker has ended, it is started again"), 2,
                      "on_died", source, __LINE__);
    if (_listened) {
        Q_EMIT died();
    }
}

void broker_process_t::on_failed(const QString& _last_words) {
    probe.cancel();
    who_may.on_broker_ended();
    outcome = result_t::failed(
        QStringLiteral("The MQTT broker could not be started: %1.")
            .arg(_last_words.isEmpty() ? QStringLiteral("it gave no reason") : _last_words));
    Q_EMIT failed(outcome);
}

result_t broker_process_t::wait_until_listening() {
    if (child.state() != state_t::stopped && !is_listening()) {
        QEventLoop loop;
        connect(this, &broker_process_t::listening, &loop, &QEventLoop::quit);
        connect(this, &broker_process_t::failed, &loop, &QEventLoop::quit);
        loop.exec();
    }
    if (child.state() == state_t::stopped && outcome.is_ok()) {
        return result_t::failed(QStringLiteral("The MQTT broker was not started."));
    }
    return outcome;
}

result_t broker_process_t::set_accounts(const QList<broker_account_t>& _accounts) {
    if (child.state() == state_t::stopped) {
        return result_t::failed(QStringLiteral("The MQTT broker is not running."));
    }
    return who_may.apply(_accounts);
}

void broker_process_t::stop() {
    probe.cancel();
    who_may.on_broker_ended();
    child.stop();
}

}  // namespace broker

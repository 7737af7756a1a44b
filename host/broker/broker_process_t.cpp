#include "broker/broker_process_t.h"

#include <sys/un.h>

#include <QEventLoop>
#include <QFile>
#include <QStandardPaths>
#include <utility>

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
constexpr qsizetype longest_socket_path = sizeof(sockaddr_un::sun_path) - 1;

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
      who_may({.host_account = _settings.host_account,
               .connection_topic = _settings.connection_topic,
               .session_idle = _settings.session_idle,
               .publishes_per_second = _settings.publishes_per_second,
               .publish_bytes_per_second = _settings.publish_bytes_per_second,
               .answer_timeout = _settings.answer_timeout},
              folder),
      child(this) {
    set_up_connections();
}

broker_process_t::~broker_process_t() {
    stop();
}

void broker_process_t::set_up_connections() {
    connect(&child, &supervised_process_t::launching, this, [this]() {
        who_may.on_broker_launching();
        if (const result_t written = write_configuration(); !written.is_ok()) {
            // With the former password in it, this broker will not become ready.
            utility::log_line(written.error, 2, "operator()", source, __LINE__);
        }
    });
    connect(&child, &supervised_process_t::launched, this,
            [this]() { who_may.on_broker_launched(process_id()); });
    connect(&who_may, &broker_accounts_t::effective, this, [this]() {
        const bool is_new = child.set_ready();
        Q_EMIT effective();
        if (is_new) {
            told_port.clear();
            Q_EMIT listening();
        }
    });
    connect(&who_may, &broker_accounts_t::silent, this, [this]() {
        utility::log_line(QStringLiteral("The MQTT broker has not answered for long, it is ended"),
                          2, "operator()", source, __LINE__);
        child.kill();
    });
    connect(&who_may, &broker_accounts_t::happened, this, &broker_process_t::happened);
    connect(&who_may, &broker_accounts_t::events_lost, this, &broker_process_t::events_lost);
    connect(&child, &supervised_process_t::died, this, &broker_process_t::on_died);
    connect(&child, &supervised_process_t::failed, this, &broker_process_t::on_failed);
    connect(&child, &supervised_process_t::said, this, [](const QString& _words) {
        // It tries that on the unix socket too, at every connection.
        if (_words == QLatin1String("Warning: Unable to set TCP_NODELAY.")) {
            return;
        }
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
    result_t result = check_ports({settings.port, settings.websocket_port}, settings.port_holder);
    if (result.is_ok()) {
        result =
            plugin.open(settings.plugin.isEmpty() ? plugin_file_t::usual_path() : settings.plugin);
    }
    if (result.is_ok()) {
        result = folder.create(settings.system_account);
    }
    if (result.is_ok() && QFile::encodeName(who_may.host_socket()).size() > longest_socket_path) {
        result = result_t::failed(
            QStringLiteral("The path %1 is too long for a socket.").arg(who_may.host_socket()));
    }
    if (result.is_ok()) {
        result = write_configuration();
    }
    return result.is_ok() ? who_may.apply(_accounts) : result;
}

result_t broker_process_t::write_configuration() const {
    return folder.write(
        configuration_name,
        broker_config_t::configuration(settings, who_may.configuration(plugin.path_in_child())));
}

void broker_process_t::launch(const QString& _executable) {
    child.start({.program = _executable,
                 .arguments = {QStringLiteral("-c"), folder.path(configuration_name)},
                 .account = folder.owner(),
                 .inherited = {plugin.descriptor(), settings.lock},
                 .descriptors = settings.descriptors,
                 .start_timeout = settings.start_timeout,
                 .not_ready = QStringLiteral("it does not listen on port %1").arg(settings.port),
                 .stop_timeout = settings.stop_timeout,
                 .restart_shortest = settings.restart_shortest,
                 .restart_longest = settings.restart_longest,
                 .words = without_time});
}

void broker_process_t::on_died(bool _listened) {
    who_may.on_broker_ended();
    tell_taken_port();
    utility::log_line(QStringLiteral("The MQTT broker has ended, it is started again"), 2,
                      "on_died", source, __LINE__);
    if (_listened) {
        Q_EMIT died();
    }
}

void broker_process_t::tell_taken_port() {
    const result_t free =
        check_ports({settings.port, settings.websocket_port}, settings.port_holder);
    if (!free.is_ok() && std::exchange(told_port, free.error) != free.error) {
        utility::log_line(free.error + QStringLiteral(" The MQTT broker cannot be started, and who "
                                                      "signs in there gives a password away"),
                          2, "tell_taken_port", source, __LINE__);
    }
}

void broker_process_t::on_failed(const QString& _last_words) {
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

result_t broker_process_t::set_accounts(const QList<broker_account_t>& _accounts,
                                        const QSet<QString>& _withdrawn) {
    if (child.state() == state_t::stopped) {
        return result_t::failed(QStringLiteral("The MQTT broker is not running."));
    }
    return who_may.apply(_accounts, _withdrawn);
}

void broker_process_t::stop() {
    who_may.on_broker_ended();
    child.stop();
}

}  // namespace broker

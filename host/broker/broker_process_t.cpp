#include "broker/broker_process_t.h"

#include <grp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QEventLoop>
#include <QStandardPaths>
#include <utility>

#include "broker/broker_config_t.h"
#include "broker/password_hash.h"
#include "endpoint/host_log.h"

namespace broker {

namespace {

constexpr const char* source = "host/broker/broker_process_t";
const QString configuration_name = QStringLiteral("mosquitto.conf");
const QString password_name = QStringLiteral("passwords");
const QString acl_name = QStringLiteral("acl");

/// Runs in the child, between fork and exec.
void become(const std::optional<system_account_t>& _account, pid_t _parent) {
    if (_account && (::setgroups(0, nullptr) != 0 || ::setgid(_account->group) != 0 ||
                     ::setuid(_account->user) != 0)) {
        ::_exit(126);
    }
    // After the change of account, which clears it.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != _parent) {
        ::_exit(127);
    }
}

}  // namespace

broker_process_t::broker_process_t(const broker_settings_t& _settings, QObject* _parent)
    : QObject(_parent),
      settings(_settings),
      password(random_password()),
      password_hash(hash_password(password)),
      process(this),
      probe(this),
      restart(this),
      backoff(_settings.restart_shortest, _settings.restart_longest) {
    restart.setSingleShot(true);
    process.setProcessChannelMode(QProcess::MergedChannels);
    connect(&restart, &QTimer::timeout, this, [this]() { launch(); });
    connect(&probe, &port_probe_t::listening, this, [this]() { on_listening(); });
    connect(&probe, &port_probe_t::late, this, [this]() { on_late(); });
    connect(&process, &QProcess::finished, this, [this]() { on_finished(); });
    connect(&process, &QProcess::readyRead, this, [this]() { on_output(); });
    connect(&process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError _error) {
        if (_error == QProcess::FailedToStart) {
            last_words = process.errorString();
            on_finished();
        }
    });
}

broker_process_t::~broker_process_t() {
    stop();
}

QString broker_process_t::find_executable() const {
    const QString name =
        settings.executable.isEmpty() ? QStringLiteral("mosquitto") : settings.executable;
    const QString found = QStandardPaths::findExecutable(name);
    // A user's PATH often lacks the folders of daemons.
    return found.isEmpty() ? QStandardPaths::findExecutable(
                                 name, {QStringLiteral("/usr/sbin"),
                                        QStringLiteral("/usr/local/sbin"), QStringLiteral("/sbin")})
                           : found;
}

broker_result_t broker_process_t::start(const QList<broker_account_t>& _accounts) {
    stop();
    if (const broker_result_t ready = prepare(_accounts); !ready.is_ok()) {
        return ready;
    }
    wanted = true;
    ever_listened = false;
    why_failed.clear();
    backoff.reset();
    launch();
    return {why_failed};
}

broker_result_t broker_process_t::prepare(const QList<broker_account_t>& _accounts) {
    executable = find_executable();
    if (executable.isEmpty()) {
        return {QStringLiteral("The MQTT broker \"%1\" is not installed.")
                    .arg(settings.executable.isEmpty() ? QStringLiteral("mosquitto")
                                                       : settings.executable)};
    }
    for (const quint16 port : {settings.port, settings.websocket_port}) {
        if (port != 0 && !port_probe_t::is_free(port)) {
            return {QStringLiteral("Port %1 of 127.0.0.1 is already in use.").arg(port)};
        }
    }
    if (const broker_result_t made = files.create(settings.system_account); !made.is_ok()) {
        return made;
    }
    const QByteArray text =
        broker_config_t::configuration(settings, files.path(password_name), files.path(acl_name));
    if (const broker_result_t written = files.write(configuration_name, text); !written.is_ok()) {
        return written;
    }
    return write_accounts(_accounts);
}

broker_result_t broker_process_t::write_accounts(const QList<broker_account_t>& _accounts) const {
    QList<broker_account_t> all = _accounts;
    all.append({settings.host_account, password_hash});
    if (const broker_result_t checked = broker_config_t::check(settings, all); !checked.is_ok()) {
        return checked;
    }
    const broker_result_t written = files.write(acl_name, broker_config_t::acl_file(settings));
    return written.is_ok() ? files.write(password_name, broker_config_t::password_file(all))
                           : written;
}

void broker_process_t::launch() {
    last_words.clear();
    process.setChildProcessModifier(
        [account = files.owner(), parent = ::getpid()]() { become(account, parent); });
    probe.wait_for(settings.port, settings.start_timeout);
    process.start(executable, {QStringLiteral("-c"), files.path(configuration_name)},
                  QIODevice::ReadOnly);
}

void broker_process_t::on_listening() {
    // Somebody else may have taken the port between two lives of the broker.
    if (process.state() == QProcess::NotRunning) {
        return;
    }
    listens = ever_listened = true;
    backoff.reset();
    if (std::exchange(stale, false)) {
        reload();
    }
    Q_EMIT listening();
}

void broker_process_t::on_late() {
    last_words = QStringLiteral("it does not listen on port %1").arg(settings.port);
    process.kill();
}

void broker_process_t::on_finished() {
    probe.cancel();
    const bool listened = std::exchange(listens, false);
    if (!wanted) {
        return;
    }
    if (!ever_listened) {
        give_up(QStringLiteral("The MQTT broker could not be started: %1.")
                    .arg(last_words.isEmpty() ? QStringLiteral("it gave no reason") : last_words));
        return;
    }
    comunication::host_log(QStringLiteral("The MQTT broker has ended, it is started again"), 2,
                           "on_finished", source, __LINE__);
    restart.start(backoff.next());
    if (listened) {
        Q_EMIT died();
    }
}

void broker_process_t::give_up(const QString& _reason) {
    wanted = false;
    why_failed = _reason;
    Q_EMIT failed(_reason);
}

void broker_process_t::on_output() {
    while (process.canReadLine()) {
        const QString line = QString::fromUtf8(process.readLine()).trimmed();
        // Lines begin with a time stamp in seconds.
        last_words = line.section(QStringLiteral(": "), 1);
        comunication::host_log(QStringLiteral("MQTT broker: ") + last_words, 3, "on_output", source,
                               __LINE__);
    }
}

broker_result_t broker_process_t::wait_until_listening() {
    if (wanted && !listens) {
        QEventLoop loop;
        connect(this, &broker_process_t::listening, &loop, &QEventLoop::quit);
        connect(this, &broker_process_t::failed, &loop, &QEventLoop::quit);
        loop.exec();
    }
    if (!wanted && why_failed.isEmpty()) {
        return {QStringLiteral("The MQTT broker was not started.")};
    }
    return {why_failed};
}

broker_result_t broker_process_t::set_accounts(const QList<broker_account_t>& _accounts) {
    if (!wanted) {
        return {QStringLiteral("The MQTT broker is not running.")};
    }
    const broker_result_t written = write_accounts(_accounts);
    if (!written.is_ok()) {
        return written;
    }
    // Before it listens the signal would end it.
    stale = !listens;
    if (listens) {
        reload();
    }
    return {};
}

void broker_process_t::reload() const {
    if (process.processId() > 0) {
        ::kill(pid_t(process.processId()), SIGHUP);
    }
}

void broker_process_t::stop() {
    wanted = false;
    restart.stop();
    probe.cancel();
    if (process.state() == QProcess::NotRunning) {
        return;
    }
    process.terminate();
    if (!process.waitForFinished(int(settings.stop_timeout.count()))) {
        process.kill();
        process.waitForFinished();
    }
}

}  // namespace broker

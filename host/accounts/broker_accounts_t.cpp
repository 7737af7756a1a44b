#include "accounts/broker_accounts_t.h"

#include <QSet>
#include <utility>

#include "accounts/broker_hash.h"
#include "base/random_hex.h"
#include "logs/log_line.h"

namespace accounts {

using base::result_t;
using std::chrono::milliseconds;

namespace {

constexpr const char* source = "host/accounts/broker_accounts_t";

/// Attempts in vain, and time-outs, that make a broker a silent one: both, because a machine that
/// slept finds that much time has passed, and a broker that hangs up fails fast.
constexpr int silent_after = 5;

void warn(const QString& _sentence, int _line) {
    utility::log_line(_sentence, 2, "warn", source, _line);
}

}  // namespace

broker_accounts_t::broker_accounts_t(const account_settings_t& _settings,
                                     const process::private_folder_t& _folder, QObject* _parent)
    : QObject(_parent),
      settings(_settings),
      folder(_folder),
      password(base::random_hex()),
      control(this),
      pause(this),
      backoff(milliseconds(10), milliseconds(500)) {
    pause.setSingleShot(true);
    set_up_connections();
}

broker_accounts_t::~broker_accounts_t() = default;

void broker_accounts_t::set_up_connections() {
    connect(&pause, &QTimer::timeout, this, &broker_accounts_t::reach);
    connect(&control, &broker_control_t::effective, this, [this]() {
        backoff.reset();
        was_reached = true;
        told_loss.clear();
        Q_EMIT effective();
    });
    connect(&control, &broker_control_t::heard, this, [this]() {
        unanswered = 0;
        last_word.start();
    });
    connect(&control, &broker_control_t::lost, this, &broker_accounts_t::on_lost);
    connect(&control, &broker_control_t::left_out, this, [](const QString& _row) {
        warn(QStringLiteral("The broker could not use what it was told, ") + _row, __LINE__);
    });
    connect(&control, &broker_control_t::happened, this, &broker_accounts_t::happened);
    connect(&control, &broker_control_t::events_lost, this, &broker_accounts_t::events_lost);
}

QByteArray broker_accounts_t::configuration(const QByteArray& _library) const {
    return plugin_lines(settings, {.library = _library,
                                   .socket = host_socket().toLocal8Bit(),
                                   .host_hash = make_password_hash(password, iterations_drawn)});
}

result_t broker_accounts_t::apply(const QList<broker_account_t>& _users,
                                  const QSet<QString>& _withdrawn) {
    if (const result_t checked = check_settings(settings); !checked.is_ok()) {
        return checked;
    }
    const sorted_users_t users = sort_users(_users);
    tell_left_out(users.left_out);
    control.set_accounts(users.fit, _withdrawn);
    return {};
}

void broker_accounts_t::tell_left_out(const QStringList& _sentences) {
    const QSet<QString> former(told.cbegin(), told.cend());
    for (const QString& sentence : _sentences) {
        if (!former.contains(sentence)) {
            warn(sentence, __LINE__);
        }
    }
    told = _sentences;
}

result_t broker_accounts_t::set_connection_topic(const QString& _topic) {
    account_settings_t changed = settings;
    changed.connection_topic = _topic;
    const result_t checked = check_settings(changed);
    if (checked.is_ok()) {
        settings.connection_topic = _topic;
        control.set_connection_topic(_topic);
    }
    return checked;
}

void broker_accounts_t::on_broker_launching() {
    on_broker_ended();
    password = base::random_hex();
}

void broker_accounts_t::on_broker_launched(qint64 _process) {
    process_id = _process;
    backoff.reset();
    reach();
}

void broker_accounts_t::on_broker_ended() {
    process_id = 0;
    was_reached = false;
    unanswered = 0;
    pause.stop();
    control.close();
}

void broker_accounts_t::reach() {
    control.open({.socket = host_socket(),
                  .process = process_id,
                  .account = settings.host_account,
                  .password = password,
                  .connection_topic = settings.connection_topic,
                  .answer_timeout = settings.answer_timeout});
}

void broker_accounts_t::on_lost(const QString& _reason) {
    if (process_id == 0) {
        return;
    }
    // One that was started a moment ago does not listen yet.
    if (was_reached && std::exchange(told_loss, _reason) != _reason) {
        warn(QStringLiteral("The MQTT broker does not hear who its users are: ") + _reason,
             __LINE__);
    }
    pause.start(backoff.next());
    if (was_reached && ++unanswered >= silent_after &&
        last_word.elapsed() > silent_after * settings.answer_timeout.count()) {
        Q_EMIT silent();
    }
}

}  // namespace accounts

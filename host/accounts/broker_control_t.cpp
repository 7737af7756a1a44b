#include "accounts/broker_control_t.h"

#include <utility>

#include "base/random_hex.h"

namespace accounts {

using comunication::mosquitto_client_t;
using comunication::utility::qos_t;

namespace {

/// What changed from @p _former to @p _accounts.
control_text::change_t difference(const QHash<QString, broker_account_t>& _former,
                                  const QHash<QString, broker_account_t>& _accounts) {
    control_text::change_t change;
    for (const broker_account_t& account : _former) {
        const auto now = _accounts.constFind(account.name);
        if (now == _accounts.constEnd() || now->id != account.id) {
            change.ended.insert(account.name);
        }
    }
    for (const broker_account_t& account : _accounts) {
        const auto then = _former.constFind(account.name);
        if (then == _former.constEnd() || then->id != account.id ||
            then->password_hash != account.password_hash) {
            change.accounts.append(account);
        }
    }
    return change;
}

}  // namespace

broker_control_t::broker_control_t(QObject* _parent)
    : QObject(_parent), client(this), deleter(this), limit(this), pause(this) {
    limit.setSingleShot(true);
    pause.setSingleShot(true);
    connect(&pause, &QTimer::timeout, this, &broker_control_t::ask);
    connect(&client, &mosquitto_client_t::opened, this, [this]() { on_opened(); });
    connect(&client, &mosquitto_client_t::received, this, &broker_control_t::on_received);
    connect(&client, &mosquitto_client_t::closed, this,
            [this](const QString& _reason) { fail(_reason); });
    connect(&limit, &QTimer::timeout, this,
            [this]() { fail(QStringLiteral("the broker does not answer")); });
}

broker_control_t::~broker_control_t() = default;

void broker_control_t::open(const settings_t& _settings) {
    close();
    settings = _settings;
    reported = 0;
    comunication::client_settings_t made;
    made.host = settings.socket;
    made.port = 0;
    made.username = settings.account;
    made.password = settings.password;
    made.process = settings.process;
    deleter.set_connection(made);
    made.client_id = QStringLiteral("control-") + base::random_hex();
    limit.start(settings.answer_timeout);
    client.open(made);
}

void broker_control_t::close() {
    limit.stop();
    pause.stop();
    question = 0;
    client.abandon();
    deleter.stop();
    is_told = false;
    for (const control_text::change_t& change : std::exchange(pending, {})) {
        owed.ended += change.ended;
        owed.withdrawn += change.withdrawn;
    }
}

void broker_control_t::set_accounts(const QList<broker_account_t>& _accounts,
                                    const QSet<QString>& _withdrawn) {
    QHash<QString, broker_account_t> now;
    for (const broker_account_t& account : _accounts) {
        now.insert(account.name, account);
    }
    control_text::change_t change = difference(accounts, now);
    change.withdrawn = _withdrawn;
    accounts = now;
    if (is_told) {
        tell_change(change);
    } else {
        owed.ended += change.ended;
        owed.withdrawn += change.withdrawn;
    }
}

void broker_control_t::set_connection_topic(const QString& _topic) {
    settings.connection_topic = _topic;
    if (is_told) {
        tell_all();
    }
}

void broker_control_t::on_opened() {
    tell_all();
}

void broker_control_t::tell_all() {
    control_text::change_t change = std::exchange(owed, {});
    change.accounts = accounts.values();
    is_told = true;
    send(control_text::all(++number, settings.connection_topic, change), change);
}

void broker_control_t::tell_change(const control_text::change_t& _change) {
    if (_change.is_empty()) {
        // Nothing to wait for, but what was told before.
        if (pending.isEmpty()) {
            Q_EMIT effective();
        }
        return;
    }
    send(control_text::change(++number, _change), _change);
}

void broker_control_t::send(const QByteArray& _text, const control_text::change_t& _change) {
    // The accounts themselves are told anew after each connection.
    pending.insert(number, {{}, _change.ended, _change.withdrawn});
    limit.start(settings.answer_timeout);
    client.publish({control_text::topic, _text, qos_t::at_least_once, false});
}

void broker_control_t::ask() {
    // A change of nothing; what was told meanwhile is answered as well.
    if (question == 0 && pending.isEmpty()) {
        question = ++number;
        limit.start(settings.answer_timeout);
        client.publish(
            {control_text::topic, control_text::change(question, {}), qos_t::at_least_once, false});
    }
}

void broker_control_t::on_received(const QString& _topic, const QByteArray& _payload) {
    Q_EMIT heard();
    if (_topic == QLatin1String(control_text::answer_topic)) {
        on_answer(_payload);
    } else if (_topic == QLatin1String(control_text::report_topic)) {
        on_report(_payload);
    }
}

void broker_control_t::on_answer(const QByteArray& _payload) {
    const QByteArrayList lines = _payload.trimmed().split('\n');
    const QByteArrayList words = lines[0].split(' ');
    const quint64 answered = words.value(1).toULongLong();
    const bool is_question = answered != 0 && answered == question;
    if (words[0] != "done" || (!is_question && !pending.contains(answered))) {
        fail(QStringLiteral("the broker refuses what it is told: ") +
             QString::fromUtf8(words.mid(2).join(' ')));
        return;
    }
    pending.remove(answered);
    question = is_question ? 0 : question;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        Q_EMIT left_out(QString::fromUtf8(lines[i]));
    }
    if (pending.isEmpty() && question == 0) {
        limit.stop();
        pause.start(settings.answer_timeout);
    }
    if (pending.isEmpty() && !is_question) {
        Q_EMIT effective();
    }
}

void broker_control_t::on_report(const QByteArray& _payload) {
    const auto report = broker_report_t::parse(_payload);
    if (!report) {
        return;
    }
    client.publish(
        {control_text::topic, control_text::seen(report->number), qos_t::at_least_once, false});
    // It comes again when the acknowledgement was lost with a connection.
    if (std::exchange(reported, report->number) == report->number) {
        return;
    }
    for (const broker_event_t& event : report->events) {
        Q_EMIT happened(event);
    }
    if (report->lost > 0) {
        Q_EMIT events_lost(report->lost);
    }
    deleter.add(report->sessions);
}

void broker_control_t::fail(const QString& _reason) {
    close();
    Q_EMIT lost(_reason);
}

}  // namespace accounts

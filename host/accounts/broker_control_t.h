#pragma once

#include <QHash>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QTimer>
#include <chrono>

#include "accounts/broker_report_t.h"
#include "accounts/control_text.h"
#include "accounts/session_deleter_t.h"
#include "endpoint/mosquitto_client_t.h"

namespace accounts {

/// Tells the broker's plugin who the users are, and hears what happened. Whatever was told last is
/// told again after each connection, so that a broker that was started again knows it too. One that
/// has nothing to say is asked whether it still answers.
class broker_control_t : public QObject {
    Q_OBJECT

 public:
    struct settings_t {
        QString socket;      ///< path
        qint64 process = 0;  ///< the broker: another one that listens there is told nothing
        QString account;
        QString password;
        QString connection_topic;
        std::chrono::milliseconds answer_timeout{5'000};  ///< and pause between questions
    };

    explicit broker_control_t(QObject* _parent = nullptr);
    ~broker_control_t() override;

    /// Connects and tells; effective() or lost() follows, lost() perhaps before this returns.
    void open(const settings_t& _settings);
    /// Drops the connection; no signal follows.
    void close();

    /// Every user may read this topic from now on, and the former one no longer.
    void set_connection_topic(const QString& _topic);

    /// The users from now on, in force with the next effective(). Those of @p _withdrawn may read
    /// something no longer: nothing that is queued for them is delivered.
    void set_accounts(const QList<broker_account_t>& _accounts,
                      const QSet<QString>& _withdrawn = {});

    /// Whether the broker has what was told last.
    bool is_effective() const { return is_told && pending.isEmpty(); }

 Q_SIGNALS:
    void effective();
    /// The broker has said something.
    void heard();
    /// A row that the broker could not use: its user cannot sign in.
    void left_out(const QString& _row);
    /// The connection has ended, or the broker refused what was told. One phrase without secrets.
    void lost(const QString& _reason);
    void happened(const accounts::broker_event_t& _event);
    void events_lost(qint64 _count);

 private:
    void on_opened();
    void on_received(const QString& _topic, const QByteArray& _payload);
    void ask();
    void on_answer(const QByteArray& _payload);
    void on_report(const QByteArray& _payload);
    void tell_all();
    void tell_change(const control_text::change_t& _change);
    void send(const QByteArray& _text, const control_text::change_t& _change);
    void fail(const QString& _reason);

    settings_t settings;
    comunication::mosquitto_client_t client;
    session_deleter_t deleter;
    QTimer limit;  ///< for the answers
    QTimer pause;  ///< until the next question
    QHash<QString, broker_account_t> accounts;
    control_text::change_t owed;  ///< ended and withdrawn, while nothing could be told
    QMap<quint64, control_text::change_t> pending;  ///< told and not answered
    quint64 number = 0;
    quint64 question = 0;  ///< number of the one that is not answered; 0: none
    quint64 reported = 0;  ///< number of the last report of this broker
    bool is_told = false;  ///< the broker knows all on this connection
};

}  // namespace accounts

#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>
#include <chrono>
#include <functional>
#include <optional>

#include "endpoint/mosquitto_client_t.h"
#include "line/outcome_t.h"

namespace torlan {

/// Who asks, and where.
struct api_account_t {
    QString host;
    quint16 port = 1883;
    QString user;
    QString password;
    QString ca_file{};  ///< empty: no TLS
    std::chrono::milliseconds wait{5000};
};

/// An API user's connection, for a program that does one thing after the other: calls wait, as long
/// as the account says, and handle events meanwhile.
class api_session_t : public QObject {
    Q_OBJECT

 public:
    explicit api_session_t(api_account_t _account, QObject* _parent = nullptr);
    ~api_session_t() override;

    /// Signs in, and again while nobody says anything: a broker that is busy closes without a word.
    outcome_t open();

    outcome_t subscribe(const QString& _filter);
    /// Until the broker has taken it, or not.
    outcome_t publish(const QString& _topic, const QByteArray& _payload);

    /// The states of an element, or of all: "+".
    outcome_t follow(const QString& _element);

    /// Asks and waits for the answer, which may be an error; "uuid" is added where there is none.
    outcome_t ask(const QString& _topic, const QJsonObject& _question, QJsonObject* _answer);

    /// Where this client asks @p _what: "get/elements/objects_list".
    QString request_topic(const QString& _what) const;

    /// Handles events until @p _is_enough, at most so long. False: it is not.
    bool wait(std::chrono::milliseconds _limit, const std::function<bool()>& _is_enough);
    bool is_open() const { return client.is_open(); }
    /// Why the connection has ended.
    QString reason() const { return end; }

    /// Every call ends soon, as done.
    void give_up();
    bool is_given_up() const { return given_up; }

 Q_SIGNALS:
    /// @p _data empty: withdrawn.
    void state(const QString& _element, const QJsonObject& _data);
    /// Something has happened that a wait may be for.
    void changed();

 private:
    /// What the broker has said to one packet.
    struct receipt_t {
        int id = 0;
        std::optional<bool> accepted{};
    };
    struct question_t {
        QString answer_topic{};
        QString uuid{};
        QJsonObject answer{};
    };

    void connect_once(std::chrono::milliseconds _limit);
    void take(const QString& _topic, const QByteArray& _payload);
    void note(int _id, bool _accepted);
    outcome_t await(const QString& _silence, const std::function<bool()>& _is_enough);
    outcome_t refused_at(const QString& _topic) const;
    QString place() const;
    QString seconds() const;

    const api_account_t account;
    const QString root;         ///< of the user's topics
    const QString client_word;  ///< its level of this client
    comunication::mosquitto_client_t client;
    QString end;
    bool is_refused = false;
    bool given_up = false;
    receipt_t receipt;
    std::optional<question_t> open_question;
};

}  // namespace torlan

#pragma once

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTimer>

#include "control/asker_t.h"
#include "database/database_t.h"
#include "endpoint/mosquitto_client_t.h"

namespace torlan {

/// Compares the states that the broker holds for users with what they may read now; nothing is
/// changed. One user after the other, so that no more than one's states are in memory, and no more
/// users than time and a limit of states allow. Main thread.
class retained_check_t : public QObject {
    Q_OBJECT

 public:
    static constexpr std::chrono::milliseconds longest{15'000};
    static constexpr qint64 most_states = 100'000;

    /// @p _connection as the host's account; @p _fence a topic with a retained message, which comes
    /// behind what was subscribed before. The database outlives this object.
    retained_check_t(const database::database_t* _database,
                     comunication::client_settings_t _connection, QString _fence,
                     QObject* _parent = nullptr);
    ~retained_check_t() override;

    /// finished() follows.
    void start();

 Q_SIGNALS:
    /// {"expected", "missing", "surplus", "users", "users_seen", "topics": some of those}, or
    /// {"error": sentence}.
    void finished(const QJsonObject& _answer);

 private:
    void begin_user();
    void take(const QString& _topic, bool _is_empty);
    void compare();
    void note(const QString& _topic, qint64* _count);
    void end(const QString& _error);
    QString filter() const;

    const database::database_t* const database;
    const comunication::client_settings_t connection;
    const QString fence;
    comunication::mosquitto_client_t client;
    QTimer limit;
    QStringList left;  ///< users' ids
    qsizetype users = 0;
    QSet<QString> held;  ///< elements of the user whose turn it is
    quint32 turn = 0;
    qint64 expected = 0;
    qint64 missing = 0;
    qint64 surplus = 0;
    QStringList topics;
    bool is_over = false;
};

}  // namespace torlan

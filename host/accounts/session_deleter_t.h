#pragma once

#include <QObject>
#include <QQueue>
#include <QSet>
#include <QString>
#include <memory>
#include <vector>

#include "endpoint/mosquitto_client_t.h"

namespace accounts {

/// Deletes sessions that the broker keeps, by taking them over: connects with their identifier and
/// a clean start, and leaves. A few at a time; one that fails is asked for again by the broker's
/// plugin.
class session_deleter_t : public QObject {
    Q_OBJECT

 public:
    static constexpr qsizetype most_waiting = 10'000;

    explicit session_deleter_t(QObject* _parent = nullptr);
    ~session_deleter_t() override;

    /// How to connect, but for the identifier.
    void set_connection(const comunication::client_settings_t& _settings) { settings = _settings; }

    /// Those that wait already, and too many, are left out.
    void add(const QStringList& _ids);

    /// Forgets all of them.
    void stop();

    bool is_idle() const { return busy == 0; }

 Q_SIGNALS:
    /// None waits any more.
    void idle();

 private:
    void next(comunication::mosquitto_client_t* _client);
    void finish(comunication::mosquitto_client_t* _client, int _round);

    comunication::client_settings_t settings;
    QQueue<QString> waiting;
    QSet<QString> known;  ///< that wait
    std::vector<std::unique_ptr<comunication::mosquitto_client_t>> clients;
    QList<comunication::mosquitto_client_t*> free;
    int busy = 0;
    int round = 0;  ///< of stop()
};

}  // namespace accounts

#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>

#include "base/result_t.h"
#include "endpoint/mosquitto_client_t.h"

namespace torlan {

/// Asks the API a question through the broker, as a user would, until it answers.
class ready_probe_t : public QObject {
    Q_OBJECT

 public:
    struct settings_t {
        quint16 port = 1883;
        QString account;  ///< a broker account with the rights of an API user
        QString password;
        std::chrono::milliseconds again{500};       ///< until the question is put once more
        std::chrono::milliseconds timeout{60'000};  ///< for all of it
    };

    explicit ready_probe_t(const settings_t& _settings, QObject* _parent = nullptr);
    ~ready_probe_t() override;

    /// Handles events until the API has answered.
    base::result_t run();

    /// Makes run() fail soon.
    void give_up();

 Q_SIGNALS:
    void finished();

 private:
    void ask();
    void end(const base::result_t& _outcome);

    const settings_t settings;
    const QString tree;  ///< topics of the probe's account
    comunication::mosquitto_client_t client;
    QTimer repeat;
    QTimer limit;
    base::result_t outcome;
    bool done = false;
};

}  // namespace torlan

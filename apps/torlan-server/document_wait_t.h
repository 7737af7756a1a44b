#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>

#include "base/result_t.h"

namespace torlan {

/// Waits until the configuration server answers; a server of a stranger on its port is a failure at
/// once. Main thread, with an event loop.
class document_wait_t : public QObject {
    Q_OBJECT

 public:
    /// @param _port where the server is, on 127.0.0.1
    /// @param _seconds how long to wait; 0: one question
    document_wait_t(quint16 _port, int _seconds, QObject* _parent = nullptr);
    ~document_wait_t() override;

    /// The whole document; handles events meanwhile.
    base::result_of_t<QJsonObject> run();

    /// Makes run() fail soon.
    void give_up();

 Q_SIGNALS:
    /// The first question had no answer; one sentence.
    void waiting(const QString& _sentence);
    void given_up();

 private:
    void pause();

    const quint16 port;
    const int seconds;
    bool is_given_up = false;
};

}  // namespace torlan

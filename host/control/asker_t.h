#pragma once

#include <QJsonObject>
#include <QLocalSocket>
#include <QObject>
#include <QTimer>

namespace control {

/// Somebody who asks over the control socket: one question, and lines as its answer. Whoever is
/// slow, silent or too long is sent away; nothing here waits. Deletes itself in the end, so keep a
/// QPointer.
class asker_t : public QObject {
    Q_OBJECT

 public:
    /// @p _socket connected, owned from here on
    asker_t(int _socket, QObject* _parent);
    ~asker_t() override;

    /// One line of the answer. False: so much waits for the asker to read that it was left out.
    bool send(QJsonObject _line);
    /// There is no more; what was sent still arrives.
    void finish();
    /// A sentence instead of an answer.
    void refuse(const QString& _sentence);

 Q_SIGNALS:
    /// Once. Answered by send(), perhaps later, and finish().
    void asked(const QJsonObject& _question);
    /// The other end is closed.
    void gone();

 private:
    void on_readable();
    void take(const QByteArray& _line);
    void end();

    QLocalSocket socket;
    QTimer limit;  ///< until the question is here, and until its answer is read
    bool has_asked = false;
    bool has_ended = false;
};

}  // namespace control

#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QJsonObject>
#include <QString>

#include "base/result_t.h"
#include "process/file_lock_t.h"

namespace control {

/// Asks the server of a data folder. For tools: calls wait, no longer than they are told to.
///
/// Only who holds the folder's lock is believed, and only the folder's owner or root: whoever could
/// put a socket there otherwise might say what he likes.
class control_client_t {
 public:
    explicit control_client_t(const QString& _folder);
    Q_DISABLE_COPY_MOVE(control_client_t)
    ~control_client_t();

    /// Whether a server has the folder.
    base::result_of_t<bool> has_server();

    /// Connects anew and asks one question; its "version" is added. A server that is about to
    /// listen is waited for.
    base::result_t ask(const QJsonObject& _question, const QDeadlineTimer& _limit);

    /// The next line of the answer; one with "error" is a failure, and so is the end.
    base::result_of_t<QJsonObject> next(const QDeadlineTimer& _limit);

    /// Whether the last failure of next() was the answer's end.
    bool is_over() const { return over; }

 private:
    base::result_t connect(const QDeadlineTimer& _limit);
    base::result_t judge() const;
    base::result_t send(const QByteArray& _text, const QDeadlineTimer& _limit) const;
    base::result_t receive(const QDeadlineTimer& _limit);
    bool wait(short _events, const QDeadlineTimer& _limit) const;
    base::result_t silence() const;
    void close();

    const QString folder;
    process::file_lock_t lock;  ///< looked at, never taken
    int socket = -1;
    bool over = false;
    QByteArray received;
};

}  // namespace control

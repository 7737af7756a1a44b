#pragma once

#include <QString>

namespace comunication {

/// Whether the one process that may be told a password is at the other end of a unix socket.
class peer_judge_t {
 public:
    /// @p _process 0: anybody may be told.
    void expect(qint64 _process) { expected = _process; }

    /// Why a connection to @p _path is not to be tried; empty: it may be. Does not wait, as
    /// connecting might.
    QString objection(const QString& _path) const;

    /// Looks at a connection, once; one of another process is shut. Why; empty: it was not.
    QString judge(int _socket);

    /// Somebody is expected, and there was no connection to look at.
    bool is_unjudged() const { return expected != 0; }

 private:
    qint64 expected = 0;  ///< not judged yet
};

}  // namespace comunication

#pragma once

#include <QHash>
#include <QString>
#include <deque>

#include "endpoint/outgoing_queue_t.h"

namespace comunication {

/// Answers to refused requests, first in, first out, few of each user: who floods takes nobody
/// else's room. They go when nothing else waits. Every operation takes constant time. Not
/// thread-safe.
class refusal_queue_t {
 public:
    /// Of one user; more tell a client nothing new.
    static constexpr int most_of_user = 20;

    /// False: so many of this user's wait that this one is not taken.
    bool push(const QString& _user, outgoing_t _message);

    /// The oldest one. Only when there is one.
    outgoing_t pop();

    void clear();
    bool is_empty() const { return waiting.empty(); }
    std::size_t size() const { return waiting.size(); }

 private:
    struct entry_t {
        QString user;
        outgoing_t message;
    };

    std::deque<entry_t> waiting;
    QHash<QString, int> of_user;  ///< none is 0
};

}  // namespace comunication

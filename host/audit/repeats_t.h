#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>

#include "audit/entry_t.h"

namespace audit {

/// Whose room an entry takes: what one user reads, what he writes and the rest, each; all who
/// failed to sign in together; each outsider who changes something. So nobody pushes out what
/// others did, nor his own writes by reading. Pure.
QString owner_of(const entry_t& _entry);
/// Whether an owner is no API user.
bool is_outsider(const QString& _owner);

/// Which of the entries become lines. The same by the same is a line once, and then counted in one
/// line a minute for as long as it goes on; an owner gets so many different lines a minute and so
/// many bytes a day, and what is above is counted. Pure but for what it has counted.
class repeats_t {
 public:
    struct limits_t {
        qsizetype lines_a_minute = 120;        ///< of one owner
        qint64 bytes_a_day = 4 * 1024 * 1024;  ///< of one owner
        qsizetype outsider_factor = 10;        ///< an owner who is no API user has so much more
        qsizetype lines_of_all = 20'000;       ///< kept for counting
        qsizetype owners = 10'000;             ///< the rest share what one owner has
    };

    explicit repeats_t(const limits_t& _limits) : limits(_limits) {}

    /// The line that is to be written at once; empty: it is counted.
    QByteArray take(const entry_t& _entry);

    /// A minute is over: the lines about what was counted, by time.
    QByteArray settle(qint64 _now);

 private:
    struct owner_t {
        QHash<QString, entry_t> told;  ///< count: since the last line about it
        QHash<QString, entry_t> rest;  ///< found no room, by operation and result
        qint64 bytes = 0;              ///< today
        qsizetype factor = 1;
    };

    owner_t& owner(const entry_t& _entry);
    void settle(owner_t* _owner, QList<entry_t>* _counted);

    const limits_t limits;
    QHash<QString, owner_t> owners;
    qsizetype lines = 0;  ///< in "told" of all
    qint64 day = 0;
};

}  // namespace audit

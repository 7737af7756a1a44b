#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <functional>

#include "audit/entry_t.h"

namespace audit {

/// What waits to be worked off: bounded in number and bytes, for each user and in all, so that the
/// one who does most pushes out nobody else. A part is a user's ("alice" or, of something that must
/// not push out the rest, "alice/refused") or an outsider's ("/database"). What finds no room is
/// counted, by part. Not thread-safe.
class waiting_room_t {
 public:
    struct limits_t {
        qsizetype of_user = 512;
        qint64 bytes_of_user = 4 * 1024 * 1024;
        qsizetype of_all = 16'384;
        qint64 bytes_of_all = 32 * 1024 * 1024;
        qsizetype parts = 1'000;  ///< whose losses are counted by name; the rest together
    };
    /// Makes the entries, at no cost for who has them noted.
    using maker_t = std::function<QList<entry_t>()>;
    struct taken_t {
        QList<maker_t> makers;          ///< in the order of their coming
        QHash<QString, qint64> lost{};  ///< by part; "": of too many
    };

    explicit waiting_room_t(const limits_t& _limits) : limits(_limits) {}

    void push(const QString& _part, qint64 _bytes, maker_t _make);
    bool is_empty() const { return makers.isEmpty() && lost.isEmpty(); }
    /// Somebody's part, or the whole, is half full.
    bool is_filling() const { return filling; }
    /// All of it; the room is empty after that.
    taken_t take();

 private:
    struct held_t {
        qsizetype count = 0;
        qint64 bytes = 0;
    };

    const limits_t limits;
    QList<maker_t> makers;
    QHash<QString, held_t> parts;
    QHash<QString, qint64> lost;
    qint64 bytes = 0;
    bool filling = false;
};

}  // namespace audit

#pragma once

#include <QSet>
#include <QString>

namespace knx {

/// Which kinds of trouble are in the log already; bounded.
class told_once_t {
 public:
    /// True for the first of a kind, and for no more kinds than are worth reading.
    bool is_first(const QString& _kind) {
        if (kinds.contains(_kind) || kinds.size() >= most_kinds) {
            return false;
        }
        kinds.insert(_kind);
        return true;
    }

 private:
    static constexpr qsizetype most_kinds = 1000;
    QSet<QString> kinds;
};

}  // namespace knx

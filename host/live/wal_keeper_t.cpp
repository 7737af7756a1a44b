#include "live/wal_keeper_t.h"

#include <QFileInfo>
#include <utility>

namespace database::live {

void wal_keeper_t::look(int _busy_ms) {
    const QFileInfo log(connection.path() + QLatin1String("-wal"));
    const bool is_idle = std::exchange(size, log.size()) == log.size() &&
                         std::exchange(written, log.lastModified()) == log.lastModified();
    if (size == 0 || !is_idle || !connection.check_place().is_ok()) {
        return;
    }
    // Whether it worked shows in the size; what is in the way now is not in the way for ever.
    static_cast<void>(connection.run(QStringLiteral("PRAGMA busy_timeout = 0")));
    static_cast<void>(connection.run(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)")));
    static_cast<void>(connection.run(QStringLiteral("PRAGMA busy_timeout = %1").arg(_busy_ms)));
}

}  // namespace database::live

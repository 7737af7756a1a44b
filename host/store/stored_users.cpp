#include "store/stored_users.h"

#include <QFile>

#include "store/store_reader_t.h"

namespace database::store {

QMap<QString, installation::user_t> stored_users(const QString& _path, int _busy_ms) {
    connection_t connection;
    installation::installation_t part;
    const bool is_read =
        QFile::exists(_path) &&
        connection.open(_path, connection_t::access_t::read_only, _busy_ms).is_ok() &&
        store_reader_t(connection).read_accounts(&part).is_ok();
    return is_read ? part.users : QMap<QString, installation::user_t>();
}

}  // namespace database::store

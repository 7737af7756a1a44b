#include "stored_home.h"

#include <QFileInfo>

#include "store/sqlite_store_t.h"

namespace torlan {

base::result_of_t<database::installation::installation_t> stored_home(const QString& _data) {
    const QString file = _data + QStringLiteral("/installation.db");
    if (!QFileInfo::exists(file)) {
        return base::result_t::failed(QStringLiteral("There is no installation in %1.").arg(_data));
    }
    database::store::sqlite_store_t store;
    if (const base::result_t opened = store.open(file); !opened.is_ok()) {
        return opened;
    }
    return store.read();
}

}  // namespace torlan

#include "installation_import_t.h"

#include <QFile>
#include <QJsonDocument>

#include "accounts/broker_hash.h"
#include "installation/document_reader.h"
#include "store/sqlite_store_t.h"

namespace torlan {

QString installation_import_t::read(const QString& _file) {
    const auto document = database::installation::read_document_file(_file);
    if (!document.is_ok()) {
        return document.error;
    }
    installation = document.value;
    is_read = true;
    QFile file(_file);
    if (file.open(QIODevice::ReadOnly)) {
        users = QJsonDocument::fromJson(file.readAll())
                    .object()
                    .value(QLatin1String("users"))
                    .toObject();
    }
    return {};
}

QString installation_import_t::write(const QString& _database) const {
    if (!is_read) {
        return {};
    }
    database::store::sqlite_store_t store;
    const auto opened = store.open(_database);
    return opened.is_ok() ? store.replace(installation).error : opened.error;
}

QString installation_import_t::password_of(const QString& _user_id) const {
    const QString password =
        users.value(_user_id).toObject().value(QLatin1String("password")).toString();
    return accounts::is_password_hash(password) ? QString() : password;
}

}  // namespace torlan

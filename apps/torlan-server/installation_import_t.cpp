#include "installation_import_t.h"

#include <QJsonDocument>
#include <utility>

#include "accounts/broker_hash.h"
#include "installation/document_reader.h"
#include "installation/shared_items.h"
#include "logs/log_line.h"
#include "program/file_reader_t.h"
#include "store/sqlite_store_t.h"
#include "store/stored_users.h"

namespace torlan {

namespace {
constexpr const char* source = "apps/torlan-server/installation_import_t";
}

installation_import_t::installation_import_t(QObject* _parent) : QObject(_parent) {}

installation_import_t::~installation_import_t() = default;

base::result_t installation_import_t::read(const QString& _file, const QString& _database) {
    file_reader_t reader(_file, database::installation::max_document_bytes);
    connect(this, &installation_import_t::given_up, &reader, &file_reader_t::give_up);
    const base::result_of_t<QByteArray> bytes = reader.read();
    if (!bytes.is_ok()) {
        return bytes;
    }
    const auto document = database::installation::read_document(
        bytes.value, _file, database::store::stored_users(_database, 5000));
    if (!document.is_ok()) {
        return document;
    }
    installation = document.value;
    users = QJsonDocument::fromJson(bytes.value).object().value(QLatin1String("users")).toObject();
    is_read = true;
    return {};
}

void installation_import_t::give_up() {
    Q_EMIT given_up();
}

base::result_t installation_import_t::write(const QString& _database) {
    if (!std::exchange(is_read, false)) {
        return {};
    }
    const database::installation::installation_t whole = std::exchange(installation, {});
    database::store::sqlite_store_t store;
    base::result_t result = store.open(_database);
    if (result.is_ok()) {
        result = store.replace(whole);
    }
    QStringList notes = store.take_notes();
    if (result.is_ok()) {
        notes += database::installation::shared_items(whole);
    }
    for (const QString& sentence : notes) {
        utility::log_line(sentence, 3, "write", source, __LINE__);
    }
    return result;
}

QString installation_import_t::password_of(const QString& _user_id) const {
    const QString password =
        users.value(_user_id).toObject().value(QLatin1String("password")).toString();
    return accounts::is_password_hash(password) ? QString() : password;
}

}  // namespace torlan

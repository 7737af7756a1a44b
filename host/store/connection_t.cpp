#include "store/connection_t.h"

#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <atomic>
#include <optional>

namespace database::store {

using ::base::result_t;

struct connection_t::impl_t {
    QString name;  ///< Qt's name of the connection; empty: closed
    QString path;
    std::optional<file_identity_t> file;                    ///< which was opened; nothing: closed
    QHash<QString, std::shared_ptr<QSqlQuery>> statements;  ///< by their text
    int changed_rows = 0;
    cause_t cause = cause_t::none;

    result_t failure(const QSqlError& _error);
    QSqlQuery* prepared(const QString& _sql, result_t* _result);
};

namespace {

QString unique_name() {
    static std::atomic<int> counter = 0;
    return QStringLiteral("torlan-store-%1").arg(++counter);
}

connection_t::cause_t cause_of(const QSqlError& _error) {
    // The low byte of an extended code is the plain one.
    switch (_error.nativeErrorCode().toInt() & 0xff) {
        case 5:  // busy
        case 6:  // locked
            return connection_t::cause_t::busy;
        case 11:  // corrupt
        case 26:  // not a database
            return connection_t::cause_t::damaged;
        case 19:  // constraint
            return connection_t::cause_t::refused;
        default:
            return connection_t::cause_t::other;
    }
}

}  // namespace

result_t connection_t::impl_t::failure(const QSqlError& _error) {
    cause = cause_of(_error);
    if (cause == cause_t::busy) {
        return result_t::failed(
            QStringLiteral("The database %1 is in use by another program.").arg(path));
    }
    const QString text =
        _error.databaseText().isEmpty() ? _error.driverText() : _error.databaseText();
    return result_t::failed((cause == cause_t::damaged
                                 ? QStringLiteral("The database %1 is damaged: %2.")
                                 : QStringLiteral("Database %1: %2."))
                                .arg(path, text));
}

QSqlQuery* connection_t::impl_t::prepared(const QString& _sql, result_t* _result) {
    const auto known = statements.constFind(_sql);
    if (known != statements.constEnd()) {
        return known->get();
    }
    auto query = std::make_shared<QSqlQuery>(QSqlDatabase::database(name, false));
    query->setForwardOnly(true);
    if (!query->prepare(_sql)) {
        *_result = failure(query->lastError());
        return nullptr;
    }
    return statements.insert(_sql, query)->get();
}

connection_t::connection_t() : impl(std::make_unique<impl_t>()) {}

connection_t::~connection_t() {
    close();
}

result_t connection_t::open(const QString& _path, access_t _access, int _busy_ms) {
    close();
    impl->path = _path;
    impl->name = unique_name();
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), impl->name);
    database.setDatabaseName(_path);
    QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(_busy_ms);
    if (_access == access_t::read_only) {
        options += QStringLiteral(";QSQLITE_OPEN_READONLY");
    }
    database.setConnectOptions(options);
    const auto before = file_identity_t::of(_path);
    if (!database.open()) {
        return impl->failure(database.lastError());
    }
    impl->file = file_identity_t::of(_path);
    // Exchanged between the looks: nobody knows which of both has been opened.
    if (before && impl->file != before) {
        impl->file.reset();
    }
    return {};
}

void connection_t::close() {
    impl->statements.clear();
    impl->file.reset();
    if (!impl->name.isEmpty()) {
        QSqlDatabase::removeDatabase(std::exchange(impl->name, {}));
    }
}

QString connection_t::path() const {
    return impl->path;
}

result_t connection_t::check_place() const {
    const auto there = file_identity_t::of(impl->path);
    if (there && there == impl->file) {
        return {};
    }
    return result_t::failed((there ? QStringLiteral("The database %1 was replaced by another file.")
                                   : QStringLiteral("The database %1 was removed."))
                                .arg(impl->path));
}

std::optional<file_identity_t> connection_t::file() const {
    return impl->file;
}

result_t connection_t::run(const QString& _sql, const QVariantList& _values) {
    return each(_sql, _values, nullptr);
}

result_t connection_t::each(const QString& _sql, const QVariantList& _values, const row_t& _row) {
    impl->cause = cause_t::none;
    result_t result;
    QSqlQuery* query = impl->prepared(_sql, &result);
    if (query == nullptr) {
        return result;
    }
    for (qsizetype i = 0; i < _values.size(); ++i) {
        query->bindValue(int(i), _values.at(i));
    }
    if (!query->exec()) {
        result = impl->failure(query->lastError());
    }
    impl->changed_rows = query->numRowsAffected();
    while (result.is_ok() && _row && query->next()) {
        _row(*query);
    }
    if (result.is_ok() && query->lastError().isValid()) {
        result = impl->failure(query->lastError());
    }
    // A stepped statement that is not finished keeps its read transaction open.
    query->finish();
    return result;
}

::base::result_of_t<QVariant> connection_t::value(const QString& _sql,
                                                  const QVariantList& _values) {
    QVariant first;
    const result_t result = each(_sql, _values, [&first](const QSqlQuery& _row) {
        if (!first.isValid()) {
            first = _row.value(0);
        }
    });
    if (!result.is_ok()) {
        return result;
    }
    return first;
}

int connection_t::changed_rows() const {
    return impl->changed_rows;
}

connection_t::cause_t connection_t::cause() const {
    return impl->cause;
}

}  // namespace database::store

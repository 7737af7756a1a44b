#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "doctor/checks.h"
#include "doctor/health_rules.h"
#include "process/trusted_path.h"
#include "program/file_reader_t.h"
#include "store/database_check.h"
#include "store/schema.h"

namespace torlan {

namespace {

constexpr int busy_ms = 5000;
constexpr qint64 most_settings_bytes = 4 << 20;

/// What has secrets, in a folder that others may enter.
findings_t mode_findings(const QString& _data) {
    findings_t found;
    for (const char* const name : {"installation.db", "settings.json"}) {
        struct stat status {};
        const QByteArray path = QFile::encodeName(QDir(_data).filePath(QLatin1String(name)));
        if (::stat(path.constData(), &status) == 0) {
            found.append(health_rules::secret(QLatin1String(name), status.st_mode));
        }
    }
    return found;
}

findings_t settings_findings(const QString& _data) {
    const QString path = QDir(_data).filePath(QStringLiteral("settings.json"));
    const QString about = QStringLiteral("settings");
    if (!QFileInfo::exists(path)) {
        return {{about, health_t::warning,
                 QStringLiteral("there is no settings.json; the first start writes one")}};
    }
    const auto bytes = file_reader_t(path, most_settings_bytes).read();
    return bytes.is_ok() ? health_rules::settings(bytes.value)
                         : findings_t{{about, health_t::problem, bytes.error}};
}

finding_t database_finding(const QString& _data) {
    const QString path = QDir(_data).filePath(QStringLiteral("installation.db"));
    const QString about = QStringLiteral("database");
    if (!QFileInfo::exists(path)) {
        return {about, health_t::warning, QStringLiteral("there is no installation yet")};
    }
    bool is_busy = false;
    const base::result_t checked = database::store::check_database(path, busy_ms, &is_busy);
    if (checked.is_ok()) {
        return {about, health_t::ok,
                QStringLiteral("every page was read, its layout is %1")
                    .arg(database::store::schema_version)};
    }
    return {about, is_busy ? health_t::unchecked : health_t::problem, checked.error};
}

}  // namespace

findings_t folder_findings(const QString& _data) {
    const QString about = QStringLiteral("files");
    if (!QFileInfo(_data).isDir()) {
        return {{about, health_t::problem, QStringLiteral("there is no folder %1").arg(_data)}};
    }
    const QString folder = QFileInfo(_data).canonicalFilePath();
    const base::result_t ours = process::check_only_ours(folder);
    findings_t found{
        {about, ours.is_ok() ? health_t::ok : health_t::problem,
         ours.is_ok() ? QStringLiteral("nobody else can change %1").arg(folder) : ours.error}};
    struct stat status {};
    if (::stat(QFile::encodeName(folder).constData(), &status) == 0 &&
        (status.st_mode & 011U) != 0) {
        found += mode_findings(folder);
    }
    return found + settings_findings(folder) + findings_t{database_finding(folder)};
}

}  // namespace torlan

// JSON files.
#include <QFile>
#include <QFileInfo>
#include <exception>

#include "utility/utility_t.h"
#include "utility/utility_t_log.h"

namespace utility {

namespace {

/// Runs @p _operation; an exception becomes a log line and false.
template <class Operation>
bool caught(const char* _function, int _line_standard, int _line_other,
            const Operation& _operation) {
    const QString text = QStringLiteral("Handling exception: ");
    try {
        _operation();
        return true;
    } catch (const std::exception& exception) {
        log_utility(text + QString::fromUtf8(exception.what()), 1, _function, _line_standard);
    } catch (...) {
        log_utility(text + QStringLiteral("unknown"), 1, _function, _line_other);
    }
    return false;
}

QJsonObject parsed_file(const QString& _path) {
    QFile file(_path);
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    file.close();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(content, &error);
    if (error.error != QJsonParseError::NoError) {
        log_utility(QStringLiteral("Error parsing file"), 2, "readFromFile", 27);
        return {};
    }
    return document.object();
}

}  // namespace

QJsonObject utility_t::readFromFile(const QString& path) {
    QJsonObject object;
    caught("readFromFile", 36, 39, [&path, &object]() {
        if (!QFile::exists(path)) {
            log_utility(QStringLiteral("File not exist ... ") + path, 2, "readFromFile", 33);
            return;
        }
        object = parsed_file(path);
    });
    return object;
}

bool utility_t::writeToFile(const QString& path, const QJsonObject& object,
                            QFileDevice::Permissions permissions) {
    return caught("writeToFile", 60, 63, [&]() {
        constexpr QFileDevice::Permissions readable_by_all =
            QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadUser |
            QFileDevice::ReadGroup | QFileDevice::ReadOther;
        QFile file(path);
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            file.write(QJsonDocument(object).toJson(QJsonDocument::Indented));
            file.close();
        }
        file.setPermissions(permissions.toInt() == 0 ? readable_by_all : permissions);
    });
}

bool utility_t::fileExists(const QString& path) {
    return QFileInfo::exists(path);
}

}  // namespace utility

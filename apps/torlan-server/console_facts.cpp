#include "console_facts.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include "connection_topic.h"

namespace torlan {

base::result_t write_console_facts(const QString& _path, quint16 _port,
                                   const database::database_t& _database) {
    const QJsonObject facts{{QStringLiteral("connection"), connection_topic(_database)},
                            {QStringLiteral("port"), _port}};
    const QByteArray text = QJsonDocument(facts).toJson(QJsonDocument::Compact);
    QSaveFile file(_path);
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) ||
        file.write(text) != text.size() || !file.commit()) {
        return base::result_t::failed(
            QStringLiteral("What the console shows cannot be written to %1: %2.")
                .arg(_path, file.errorString()));
    }
    return {};
}

}  // namespace torlan

#pragma once

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "fakes/recording_logger_t.h"
#include "http/http_t.h"
#include "unit/server/utility/support/config_server_t.h"
#include "unit/server/utility/support/options_guard_t.h"
#include "utility/cnfserver.h"
#include "utility/http_read_config_server_t.h"

namespace client_test {

/// A line without its number, which is any.
struct entry_t {
    int level;
    QString text;
    QString function;

    bool operator==(const entry_t&) const = default;
};

inline QList<entry_t> client_lines(const fakes::recording_logger_t& _logger) {
    QList<entry_t> list;
    for (const fakes::recording_logger_t::line_t& line : _logger.lines()) {
        if (line.source == QLatin1String("server/utility/http_read_config_server_t") &&
            line.line > 0) {
            list.append({line.level, line.message, line.function});
        }
    }
    return list;
}

/// @p _text with double quotes for its single ones: easier to read here.
inline QByteArray quoted(QByteArray _text) {
    return _text.replace('\'', '"');
}

inline QJsonObject json(const QByteArray& _text) {
    return QJsonDocument::fromJson(quoted(_text)).object();
}

/// A document with every setting that the client copies.
inline QJsonObject document(const QString& _id, const QString& _client_folder) {
    const QByteArray text =
        "{'static': {"
        "'drdconf': {'serial': 'S-77'}, 'device': {'product_name': 'Box'}, "
        "'mosquitto': {'mqtt_cloud_url': 'mqtts://cloud'}, 'torlan': {"
        "'comunication': {'port': 1883, 'global': {'name': 'house'}}, "
        "'paths': {'logs': '/l', 'plugins': '/p', 'system_ca_certs': '/ca', "
        "'cacerts': ['b.pem', 7, 'a.pem'], 'client_communication': 'FOLDER'}, "
        "'urls': {'cloud_service': 'https://service', 'cloud_web': 'https://web'}}}}";
    QJsonObject config = json(QByteArray(text).replace("FOLDER", _client_folder.toUtf8()));
    config[QLatin1String("installation")] =
        QJsonObject{{QStringLiteral("master"), QStringLiteral("yes")},
                    {QStringLiteral("installation_id"), _id}};
    return config;
}

inline QByteArray bytes(const QJsonObject& _object) {
    return QJsonDocument(_object).toJson(QJsonDocument::Compact);
}

}  // namespace client_test

/// A client of a configuration server of its own, the options that it fills and a folder for the
/// client file: new for each slot.
class client_test_t : public QObject {
 protected:
    void build() {
        server = std::make_unique<config_server_t>();
        server->answer("PUT", "200 OK", "{}");
        QVERIFY(http_t::map_base(utility::cnfserver::base, server->port()));
        clients = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(folder()).mkdir(QStringLiteral("config")));
        options = std::make_unique<options_guard_t>();
        client = std::make_unique<utility::http_read_config_server_t>(nullptr);
    }
    void take_down() {
        client.reset();
        utility::http_read_config_server_t::destroyInstance();
        options.reset();
        server.reset();
        clients.reset();
    }

    QString folder() const { return clients->path(); }
    QString file_name() const {
        return clients->filePath(QStringLiteral("config/comunication.json"));
    }

    QJsonObject client_file() const {
        QFile file(file_name());
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject{{QStringLiteral("missing"), true}};
    }

    void serve(const QJsonObject& _config) {
        server->answer("GET", "200 OK", client_test::bytes(_config));
    }

    std::unique_ptr<config_server_t> server;
    std::unique_ptr<QTemporaryDir> clients;
    std::unique_ptr<options_guard_t> options;
    std::unique_ptr<utility::http_read_config_server_t> client;
};

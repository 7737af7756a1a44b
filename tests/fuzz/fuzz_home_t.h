#pragma once

#include <QCoreApplication>
#include <QJsonObject>
#include <QList>

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t.h"
#include "kit/furnish.h"
#include "kit/settle.h"

/// The small home, loaded and with the API on, for inputs that come one after the other. Set
/// requests are recorded and change nothing, so that no input knows of the one before.
class fuzz_home_t {
 public:
    struct published_t {
        QString topic;
        QJsonObject payload;
        bool retain;
    };

    /// The one of this process.
    static fuzz_home_t& get() {
        static int count = 0;
        static QCoreApplication application(count, nullptr);
        static fuzz_home_t home;
        return home;
    }

    /// One message as the endpoint hands it over; what the API says to it.
    QList<published_t> say(const QString& _version, const QString& _user, const QString& _type,
                           const QString& _topic, const QJsonObject& _payload, bool _retain) {
        published.clear();
        database.item_requests.clear();
        database.scenary_requests.clear();
        server.handlerMessage(_version, _user, QStringLiteral("client"), _type, _topic, _payload,
                              _retain);
        kit::settle();
        return published;
    }

    fakes::memory_database_t database;
    interfaces::data_api_elements_t elements;
    interfaces::mqtt_server_t server;

 private:
    fuzz_home_t() : elements(filled(database), nullptr), server(&elements, nullptr) {
        QObject::connect(&server, &interfaces::mqtt_server_t::publish_message, &server,
                         [this](const QString& _topic, const QJsonObject& _payload, bool _retain) {
                             published.append({_topic, _payload, _retain});
                         });
        server.init_route_path(true);
        kit::settle();
    }
    static database::database_t* filled(fakes::memory_database_t& _database) {
        kit::furnish(_database);
        return _database.get();
    }

    QList<published_t> published;
};

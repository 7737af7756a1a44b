#pragma once

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <atomic>

#include "base/locks.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "router/mqtt_router_t.h"

namespace interfaces {

/// One version of the MQTT API: routes requests, publishes answers and element updates.
///
/// Lives in the plugin's thread; init_route() is called on the endpoint's thread while requests
/// may be under way. The order of the virtual operations is contract: keep it.
class mqtt_server_api_base_t : public QObject {
    Q_OBJECT

 public:
    /// Topic -> message body.
    using packets_t = QHash<QString, QJsonObject>;
    using acl_t = QHash<QString, QHash<QString, QString>>;

    mqtt_server_api_base_t(const QString& version, QPointer<data_api_elements_t> elements,
                           QObject* parent);
    ~mqtt_server_api_base_t() override;

    /// @p request with "error" and "message" inserted.
    virtual QJsonObject packet_error(QJsonObject request, const int& code, QString message) = 0;
    /// One element for every user who may read it; @p changed holds full function names or item
    /// ids, empty: all functions.
    virtual packets_t packet_update(const QString& id, const QStringList& changed) = 0;
    /// The whole list for every user. Not used for publishing here.
    virtual packets_t packet_update(const QStringList& ids) = 0;
    virtual packets_t packet_update(const QString& id) = 0;
    /// One element for one API user.
    virtual packets_t packet_update(const QString& user, const QString& id) = 0;
    virtual void init_no_route_path() = 0;
    /// Registers or removes the routes, as getEnable() says.
    virtual void init_route_path() = 0;
    /// False: the retained message is no longer valid and is to be deleted.
    virtual bool handlerMessageRetained(const QString& username, const QString& topic,
                                        const QJsonObject& payload) = 0;
    virtual QString topic_update_element(const QString& user, const QString& id) = 0;
    virtual void populate_acl(acl_t acl) = 0;

    /// Any thread.
    bool getEnable() const;
    void setEnable(bool _enable);
    void init_route(bool _enable) TORLAN_EXCLUDES(router_mutex);

    /// Answers one request.
    void handlerMessage(const QString& username, const QString& topic, const QJsonObject& payload)
        TORLAN_EXCLUDES(router_mutex);
    /// Publish element updates, retained.
    void handlerUpdateMessageAllUser(const QString& id, const QStringList& changed);
    void handlerUpdateMessageAllUser(const QStringList& ids);
    void handlerUpdateMessageByUser(const QString& user, const QStringList& ids);

 Q_SIGNALS:
    void publish_message(const QString& _topic, const QJsonObject& _payload, bool _retain);
    void enable_change(QString _version, bool _enable);

 public Q_SLOTS:
    /// Publishes the answer to one request: not retained, with the request's "uuid".
    void response(const QString& _username, const QString& _request_topic,
                  const QJsonObject& _request_payload, const QJsonObject& _response_payload);

 private:
    void publish_retained(const packets_t& _packets);

    std::atomic<bool> enabled{false};

 protected:
    QPointer<data_api_elements_t> elements;
    mqtt::mqtt_router_t router;
    QString api_root;      ///< "local/api/<version>"
    QString version_word;  ///< "base" until the constructor is done

 private:
    base::mutex_t router_mutex;  ///< the router is not assumed to be thread-safe
};

}  // namespace interfaces

#pragma once

#include <QRegExp>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_base_t.h"

namespace interfaces {

/// Version 1 of the MQTT API: four request routes and the retained element packets.
class mqtt_server_api_v1_t : public mqtt_server_api_base_t {
    Q_OBJECT

 public:
    /// Under this word the server files the handler, and API users are asked for.
    inline static const QString version = QStringLiteral("v1");

    mqtt_server_api_v1_t(QPointer<data_api_elements_t> elements, QObject* parent);
    ~mqtt_server_api_v1_t() override;

    QJsonObject packet_error(QJsonObject packet, const int& code, QString message) override;
    packets_t packet_update(const QString& id, const QStringList& changed) override;
    packets_t packet_update(const QStringList& ids) override;
    packets_t packet_update(const QString& id) override;
    packets_t packet_update(const QString& user, const QString& id) override;
    void init_no_route_path() override;
    void init_route_path() override;
    bool handlerMessageRetained(const QString& username, const QString& topic,
                                const QJsonObject& payload) override;
    QString topic_update_element(const QString& user, const QString& id) override;
    /// Forms the lines below and drops them: publishes nothing, keeps no state.
    void populate_acl(acl_t acl) override;

    /// User -> lines "<user> <word> <element topic>", in the order of @p _usernames.
    static QHash<QString, QStringList> acl_lines(const QString& _root,
                                                 const QStringList& _usernames, const acl_t& _acl);

 private:
    QStringList usernames() const;
    /// The packets of one element for @p _usernames; see packet_update(id, changed).
    packets_t element_packets(const QString& _id, const QStringList& _changed,
                              const QStringList& _usernames);

    const QRegExp retained_topic;  ///< of an element's state
};

}  // namespace interfaces

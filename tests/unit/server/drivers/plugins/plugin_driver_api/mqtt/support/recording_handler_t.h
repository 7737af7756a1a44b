#pragma once

#include <functional>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_base_t.h"

/// Another version of the API, which writes down what the server has it do.
class recording_handler_t : public interfaces::mqtt_server_api_base_t {
 public:
    recording_handler_t(interfaces::data_api_elements_t* _elements, QObject* _parent)
        : mqtt_server_api_base_t(QStringLiteral("v2"), _elements, _parent) {}

    QJsonObject packet_error(QJsonObject request, const int&, QString) override { return request; }
    packets_t packet_update(const QString& id, const QStringList& changed) override {
        return note(QStringLiteral("changed ") + id + QLatin1Char(' ') +
                    changed.join(QLatin1Char(',')));
    }
    packets_t packet_update(const QStringList& ids) override {
        return note(QStringLiteral("list ") + ids.join(QLatin1Char(',')));
    }
    packets_t packet_update(const QString& id) override {
        return note(QStringLiteral("element ") + id);
    }
    packets_t packet_update(const QString& user, const QString& id) override {
        return note(QStringLiteral("user ") + user + QLatin1Char(' ') + id);
    }
    void init_no_route_path() override { note(QStringLiteral("fallback %1").arg(getEnable())); }
    void init_route_path() override { note(QStringLiteral("routes %1").arg(getEnable())); }
    bool handlerMessageRetained(const QString& username, const QString& topic,
                                const QJsonObject&) override {
        note(QStringLiteral("retained ") + username + QLatin1Char(' ') + topic);
        return false;
    }
    QString topic_update_element(const QString& user, const QString& id) override {
        return QStringLiteral("v2/") + user + QLatin1Char('/') + id;
    }
    void populate_acl(acl_t _acl) override {
        note(QStringLiteral("acl"));
        acl = _acl;
    }

    packets_t note(const QString& _what) {
        notes.append(_what);
        heard();
        return {};
    }

    using mqtt_server_api_base_t::router;

    QStringList notes;
    std::function<void()> heard = [] {};  ///< called with each note
    acl_t acl;                            ///< of the last pass
};

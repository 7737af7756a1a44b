#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"

#include <array>

#include "database/permission.h"
#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_topics.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/api_v1_packets.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/api_v1_requests.h"

namespace interfaces {

namespace {

using request_t = QJsonObject (*)(data_api_elements_t*, const QJsonObject&, const QStringList&);

struct route_t {
    QString pattern;
    request_t request;
};

std::array<route_t, 4> routes(const QString& _root) {
    using namespace api_topics;
    return {{{list_pattern(_root, get_path), v1::read_all},
             {element_pattern(_root, get_path), v1::read_one},
             {element_pattern(_root, set_path), v1::write_one},
             {list_pattern(_root, set_path), v1::write_many}}};
}

/// @p _json with the functions whose full name or item id is in @p _changed; empty: all.
QJsonObject restricted(QJsonObject _json, const QHash<QString, QString>& _item_ids,
                       const QStringList& _changed) {
    const QString key = QStringLiteral("functions");
    if (_changed.isEmpty() || !_json.contains(key)) {
        return _json;
    }
    QJsonObject functions = _json.value(key).toObject();
    for (auto function = functions.begin(); function != functions.end();) {
        const bool stays =
            _changed.contains(function.key()) || _changed.contains(_item_ids.value(function.key()));
        function = stays ? function + 1 : functions.erase(function);
    }
    _json.insert(key, functions);
    return _json;
}

QRegExp compiled(const QString& _root) {
    QString pattern = api_topics::retained_pattern(_root);
    pattern.replace(QLatin1Char('/'), QLatin1String("\\/"));
    return QRegExp(pattern);
}

}  // namespace

mqtt_server_api_v1_t::mqtt_server_api_v1_t(QPointer<data_api_elements_t> _elements,
                                           QObject* _parent)
    : mqtt_server_api_base_t(version, _elements, _parent), retained_topic(compiled(api_root)) {}

mqtt_server_api_v1_t::~mqtt_server_api_v1_t() = default;

QJsonObject mqtt_server_api_v1_t::packet_error(QJsonObject packet, const int& code,
                                               QString message) {
    return v1::error_packet(packet, code, message);
}

QStringList mqtt_server_api_v1_t::usernames() const {
    return elements ? elements->get_api_usernames(version, true) : QStringList();
}

mqtt_server_api_v1_t::packets_t mqtt_server_api_v1_t::packet_update(const QString& id,
                                                                    const QStringList& changed) {
    return element_packets(id, changed, usernames());
}

mqtt_server_api_v1_t::packets_t mqtt_server_api_v1_t::packet_update(const QStringList&) {
    packets_t packets;
    const QStringList users = usernames();
    for (const QString& user : users) {
        packets.insert(api_topics::user_status(api_root, user), v1::to_json(*elements, user, {}));
    }
    return packets;
}

mqtt_server_api_v1_t::packets_t mqtt_server_api_v1_t::packet_update(const QString& id) {
    return element_packets(id, {}, usernames());
}

mqtt_server_api_v1_t::packets_t mqtt_server_api_v1_t::packet_update(const QString& user,
                                                                    const QString& id) {
    return usernames().contains(user) ? element_packets(id, {}, {user}) : packets_t();
}

mqtt_server_api_v1_t::packets_t mqtt_server_api_v1_t::element_packets(
    const QString& _id, const QStringList& _changed, const QStringList& _usernames) {
    packets_t packets;
    const QPointer<data_api_element_object_t> element =
        elements ? elements->get_data_api_element_object(_id) : nullptr;
    if (element.isNull()) {
        return packets;
    }
    QJsonObject body;  // the same for every user who may read, so rendered once
    for (const QString& user : _usernames) {
        int code = 0;
        if (!element->autorized_read(user, code)) {
            continue;
        }
        if (body.isEmpty()) {
            const QJsonObject json = v1::to_json(*element, user, {}, code);
            body = v1::update_packet(restricted(json, element->getFunctioName(), _changed));
        }
        if (!body.isEmpty()) {
            packets.insert(topic_update_element(user, _id), body);
        }
    }
    return packets;
}

void mqtt_server_api_v1_t::init_no_route_path() {
    router.no_route([this](const QString&, const QVariant&, const QStringList&,
                           const QMap<QString, QVariant>&) -> QJsonValue {
        return getEnable() ? v1::topic_not_valid() : v1::presentation_required();
    });
}

void mqtt_server_api_v1_t::init_route_path() {
    for (const route_t& route : routes(api_root)) {
        if (!getEnable()) {
            router.route_remove(route.pattern);
            continue;
        }
        router.route(
            route.pattern,
            [this, request = route.request](const QString&, const QVariant& payload,
                                            const QStringList& captures,
                                            const QMap<QString, QVariant>&) -> QJsonValue {
                return request(elements, payload.toJsonObject(), captures);
            },
            mqtt::PRIORITY_ROUTE::NORMAL);
    }
}

bool mqtt_server_api_v1_t::handlerMessageRetained(const QString& username, const QString& topic,
                                                  const QJsonObject&) {
    // Shares what was compiled once: the broker may send a million of them.
    QRegExp expression = retained_topic;
    if (!expression.exactMatch(topic)) {
        return true;
    }
    const QPointer<data_api_element_object_t> element =
        elements ? elements->get_data_api_element_object(expression.cap(2)) : nullptr;
    return !element.isNull() &&
           element->check_authorization(username, database::permission::read_bit);
}

QString mqtt_server_api_v1_t::topic_update_element(const QString& user, const QString& id) {
    return api_topics::element_status(api_root, user, id);
}

void mqtt_server_api_v1_t::populate_acl(acl_t acl) {
    // One user's at a time: of a large installation all of them are some hundred megabytes.
    const QStringList users = usernames();
    for (const QString& user : users) {
        const QHash<QString, QStringList> lines = acl_lines(api_root, {user}, acl);
        Q_UNUSED(lines);
    }
}

QHash<QString, QStringList> mqtt_server_api_v1_t::acl_lines(const QString& _root,
                                                            const QStringList& _usernames,
                                                            const acl_t& _acl) {
    QHash<QString, QStringList> lines;
    for (const QString& user : _usernames) {
        const QHash<QString, QString> words = _acl.value(user);
        for (auto word = words.cbegin(); word != words.cend(); ++word) {
            const QString topic = api_topics::shared_element_status(_root, word.key());
            lines[user].append(QStringLiteral("%1 %2 %3").arg(user, word.value(), topic));
        }
    }
    return lines;
}

}  // namespace interfaces

#include "drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t.h"

#include <algorithm>

#include "comunication/api_topics.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "logs/log_line.h"

namespace interfaces {

namespace {

constexpr const char* source = "server/drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t";
constexpr int acl_delay_ms = 10000;
constexpr auto queued_unique =
    static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection);
constexpr auto direct_unique =
    static_cast<Qt::ConnectionType>(Qt::DirectConnection | Qt::UniqueConnection);

}  // namespace

mqtt_server_t::mqtt_server_t(QPointer<data_api_elements_t> _elements, QObject* _parent)
    : QObject(_parent), elements(_elements) {
    auto* handler = new mqtt_server_api_v1_t(elements, this);
    connect(handler, SIGNAL(enable_change(QString, bool)), this, SLOT(enable_change(QString, bool)),
            queued_unique);
    handlers.insert(mqtt_server_api_v1_t::version, handler);
    acl_timer.reset(new utility::timer_debounce_t<>(this, acl_delay_ms, [this]() {
        acl_pass_due = true;
        on_acl_changes();
        acl_pass_due = false;
    }));
}

mqtt_server_t::~mqtt_server_t() = default;

void mqtt_server_t::init_route_path(const bool& _enable) {
    const base::mutex_locker_t locker(&route_barrier);
    for (mqtt_server_api_base_t* handler : std::as_const(handlers)) {
        connect(handler, SIGNAL(publish_message(const QString&, const QJsonObject&, bool)), this,
                SLOT(on_publish_message(const QString&, const QJsonObject&, bool)), queued_unique);
        handler->init_route(_enable);
    }
    init_event(_enable);
}

void mqtt_server_t::init_event(bool enable) {
    if (elements.isNull()) {
        return;
    }
    const auto wire = [this, enable](const char* signal, const char* slot,
                                     Qt::ConnectionType type) {
        if (enable) {
            connect(elements, signal, this, slot, type);
        } else {
            disconnect(elements, signal, this, slot);
        }
    };
    wire(SIGNAL(on_reset_api_elements(bool, const QStringList&)),
         SLOT(on_reset_api_elements(bool, const QStringList&)), direct_unique);
    wire(SIGNAL(value_change(const QString&, const QStringList&)),
         SLOT(on_value_change(const QString&, const QStringList&)), queued_unique);
    wire(SIGNAL(acl_changes()), SLOT(on_acl_changes()), queued_unique);
}

void mqtt_server_t::init_event_modify_acl(bool enable) {
    if (elements.isNull()) {
        return;
    }
    const char* add_signal =
        SIGNAL(add_acl_element(const QString&, const QString&, const QString&));
    const char* add_slot = SLOT(add_acl_element(const QString&, const QString&, const QString&));
    const char* remove_signal = SIGNAL(remove_acl_element(const QString&, const QString&));
    const char* remove_slot = SLOT(remove_acl_element(const QString&, const QString&));
    if (enable) {
        connect(elements, add_signal, this, add_slot, queued_unique);
        connect(elements, remove_signal, this, remove_slot, queued_unique);
    } else {
        disconnect(elements, add_signal, this, add_slot);
        disconnect(elements, remove_signal, this, remove_slot);
    }
}

void mqtt_server_t::enable_change(const QString&, const bool& _enable) {
    { const base::mutex_locker_t barrier(&route_barrier); }
    const base::mutex_locker_t locker(&mutex);
    const bool was_enabled = enabled;
    enabled = _enable || std::any_of(handlers.cbegin(), handlers.cend(),
                                     [](const auto* handler) { return handler->getEnable(); });
    if (was_enabled && !enabled && elements) {
        elements->setEnabled(false);
    }
    if (was_enabled || !enabled) {
        return;
    }
    Q_EMIT subscription_status_api(false);
    init_event_modify_acl(true);
    acl_timer->trigger();
    Q_EMIT subscription_status_api(true);
    if (elements) {
        elements->setEnabled(true);
    }
}

void mqtt_server_t::handlerMessage(const QString& _version, const QString& _username,
                                   const QString&, const QString& _type, const QString& _topic,
                                   const QJsonObject& _payload, const bool& _retain) {
    mqtt_server_api_base_t* handler = handlers.value(_version);
    if (handler != nullptr && _type == comunication::api_topics::status_word) {
        delete_invalid(*handler, _username, _topic, _payload, _retain);
        return;
    }
    if (handler != nullptr && _type == comunication::api_topics::request_word) {
        handler->handlerMessage(_username, _topic, _payload);
        return;
    }
    utility::log_line(QStringLiteral("API topic malformed... not found api version ") + _version, 2,
                      "handlerMessage", source, __LINE__);
}

void mqtt_server_t::delete_invalid(mqtt_server_api_base_t& _handler, const QString& _username,
                                   const QString& _topic, const QJsonObject& _payload,
                                   bool _retain) {
    if (_retain && !_handler.handlerMessageRetained(_username, _topic, _payload)) {
        Q_EMIT publish_delete_message(_topic, _retain);
    }
}

void mqtt_server_t::clean_up_topic_element() {
    if (acl_timer->isActive()) {
        return;
    }
    for (const bool subscribed : {false, true}) {
        Q_EMIT subscription_status_api(subscribed);
    }
    acl_timer->doFire();
}

template <class Update>
void mqtt_server_t::update_enabled_handlers(const char* _function, const Update& _update) {
    int reached = 0;
    for (mqtt_server_api_base_t* handler : std::as_const(handlers)) {
        if (handler->getEnable()) {
            _update(*handler);
            ++reached;
        }
    }
    if (reached == 0) {
        utility::log_line(QStringLiteral("All API is disable"), 3, _function, source, __LINE__);
    }
}

void mqtt_server_t::onUpdateElement(const QString& _id_element, const QStringList& _functions) {
    update_enabled_handlers("onUpdateElement", [&](mqtt_server_api_base_t& handler) {
        handler.handlerUpdateMessageAllUser(_id_element, _functions);
    });
}

void mqtt_server_t::onUpdateElements(const QStringList& _ids_element) {
    update_enabled_handlers("onUpdateElements", [&](mqtt_server_api_base_t& handler) {
        handler.handlerUpdateMessageAllUser(_ids_element);
    });
}

void mqtt_server_t::on_acl_changes() {
    if (!acl_pass_due) {
        // As one more queued event: the withdrawals of the same burst are handled first, while
        // the timer does not run yet; else their retained packets would stay on the broker.
        QMetaObject::invokeMethod(
            this, [this]() { acl_timer->trigger(); }, Qt::QueuedConnection);
        return;
    }
    for (mqtt_server_api_base_t* handler : std::as_const(handlers)) {
        handler->populate_acl(elements ? elements->get_data_api_elements_acl()
                                       : data_api_elements_t::acl_t());
    }
}

void mqtt_server_t::on_value_change(const QString& _id_element, const QStringList& _functions) {
    onUpdateElement(_id_element, _functions);
}

void mqtt_server_t::on_publish_message(const QString& _topic, const QJsonObject& _payload,
                                       bool _retain) {
    Q_EMIT publish_message(_topic, _payload, _retain);
}

void mqtt_server_t::on_reset_api_elements(bool, QStringList) {}

void mqtt_server_t::add_acl_element(const QString& _username, const QString& _id_element,
                                    const QString& _permission) {
    using element_t = data_api_element_object_t;
    const bool withdrawn = _permission == element_t::deny || _permission == element_t::write;
    const bool granted = _permission == element_t::read || _permission == element_t::readwrite;
    for (mqtt_server_api_base_t* handler : std::as_const(handlers)) {
        const QString topic = handler->topic_update_element(_username, _id_element);
        if (withdrawn && !acl_timer->isActive()) {
            Q_EMIT publish_delete_message(topic, true);
        } else if (granted) {
            handler->handlerUpdateMessageByUser(_username, {_id_element});
        }
    }
}

void mqtt_server_t::remove_acl_element(const QString& _username, const QString& _id_element) {
    add_acl_element(_username, _id_element, data_api_element_object_t::deny);
}

}  // namespace interfaces

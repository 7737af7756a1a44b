#include "drivers/plugins/plugin_driver_api/data/database_view_t.h"

namespace interfaces {

namespace {

/// The object of @p _id, null when the table lacks it.
template <class table_t>
auto find(const table_t* _table, const QString& _id) {
    return _table->getObjects().contains(_id) ? _table->list(_id) : nullptr;
}

}  // namespace

database_view_t::database_view_t(QPointer<database::database_t> _database)
    : database(std::move(_database)) {}

const database::persistent::ps_data_t* database_view_t::data() const {
    return database ? database->getPersistent()->getData() : nullptr;
}

QStringList database_view_t::element_ids() const {
    return data() != nullptr ? data()->getElements()->getObjects().keys() : QStringList();
}

bool database_view_t::has_element(const QString& _id) const {
    return data() != nullptr && data()->getElements()->getObjects().contains(_id);
}

const database_view_t::element_t* database_view_t::element(const QString& _id) const {
    return data() != nullptr ? find(data()->getElements(), _id) : nullptr;
}

std::unique_ptr<const database_view_t::element_t> database_view_t::clone_element(
    const QString& _id) const {
    return std::unique_ptr<const element_t>(
        data() != nullptr ? data()->getElements()->CloneElement(_id) : nullptr);
}

std::unique_ptr<const database_view_t::thermostat_t> database_view_t::thermostat(
    const QString& _id) const {
    const thermostat_t* found = data() != nullptr ? find(data()->getThermo(), _id) : nullptr;
    return found != nullptr ? std::make_unique<const thermostat_t>(*found) : nullptr;
}

QString database_view_t::item_value(const QString& _id) const {
    // The trimmed id is tested, the untrimmed one looked up.
    if (!database || _id.trimmed().isEmpty()) {
        return QLatin1String("");
    }
    const auto* item = find(database->getRealtime()->getItems(), _id);
    return item != nullptr ? item->getValue() : QLatin1String("");
}

QString database_view_t::scenary_value(const QString& _id) const {
    if (!database || _id.trimmed().isEmpty()) {
        return QLatin1String("");
    }
    const auto* scenary = find(database->getRealtime()->getScenary(), _id);
    if (scenary == nullptr) {
        return QLatin1String("");
    }
    return scenary->getExecution() ? QStringLiteral("true") : QStringLiteral("false");
}

bool database_view_t::request_item(const QString& _id, const QString& _value) const {
    auto* item = data() != nullptr ? find(data()->getItems(), _id) : nullptr;
    if (item == nullptr) {
        return false;
    }
    item->requestSetValue(_value);
    return true;
}

bool database_view_t::request_scenary(const QString& _id, bool _execution) const {
    auto* scenary = data() != nullptr ? find(data()->getScenary(), _id) : nullptr;
    if (scenary == nullptr) {
        return false;
    }
    scenary->requestSetExecution(_execution);
    return true;
}

QStringList database_view_t::user_ids(bool _enabled) const {
    return data() != nullptr ? data()->getUsers()->getUsersAPI(_enabled) : QStringList();
}

QStringList database_view_t::usernames(bool _enabled) const {
    return data() != nullptr ? data()->getUsers()->getUsernamesAPI(_enabled) : QStringList();
}

QStringList database_view_t::usernames(const QString& _version, bool _enabled) const {
    return data() != nullptr ? data()->getUsers()->getUsernamesAPI(_version, _enabled)
                             : QStringList();
}

QString database_view_t::username(const QString& _user_id) const {
    const auto* user = data() != nullptr ? find(data()->getUsers(), _user_id) : nullptr;
    return user != nullptr ? user->getUsername() : QString();
}

int database_view_t::permission(const QString& _element_id, const QString& _user_id) const {
    using flag_t = database::persistent::objects::ps_object_user_t::PermissionFlag;
    return data() != nullptr
               ? data()->check_permission_element_by_userid(_element_id, _user_id, flag_t::element)
               : 0;
}

const QObject* database_view_t::persistent_notifier() const {
    return database ? database->getPersistent()->getNotifier() : nullptr;
}

const QObject* database_view_t::realtime_notifier() const {
    return database ? database->getRealtime()->getNotifier() : nullptr;
}

}  // namespace interfaces

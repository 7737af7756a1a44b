#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_t.h"

#include <QStringBuilder>

#include "database/element_type.h"
#include "database/persistent/objects/psoe_scenario.h"
#include "database/persistent/objects/psoe_thermo_logic.h"
#include "logs/classlogs.h"
#include "utility/utility_t.h"

namespace interfaces {

using database::persistent::objects::psoe_scenario;
using database::persistent::objects::psoe_thermo_logic;
namespace element_type = database::element_type;

namespace {
constexpr const char* source =
    "server/drivers/plugins/plugin_driver_api/data/data_api_element_object_t";

/// A line of update_value(), which every listening element writes at every change: its texts are
/// made once.
void log_update(const QString& _message, int _line) {
    static const QString function = QStringLiteral("update_value");
    static const QString file = QLatin1String(source);
    if (utility::logs::classlogs* logger = utility::logs::classlogs::getInstance()) {
        logger->log_asynch(_message, 6, function, file, _line);
    }
}

}  // namespace

data_api_element_object_t::data_api_element_object_t(QPointer<database::database_t> db,
                                                     const QString& _id_element, QObject* _parent)
    : data_api_t(db, _parent), id_element(_id_element) {
    // Queued connections made from signatures look the type of value_change's hash up by name.
    qRegisterMetaType<QHash<QString, QString>>();
    init();
}

data_api_element_object_t::~data_api_element_object_t() = default;

void data_api_element_object_t::init() {
    initialising = true;
    reset();
    const auto* element = view.element(id_element);
    if (element == nullptr) {
        return;
    }
    type = element->getType();
    name_element = element->getName();
    populateFunctions();
    populatePermission();
    Q_EMIT value_change(id_element, function_values.to_hash(), function_ids.keys());
    initialising = false;
}

void data_api_element_object_t::reset() {
    init_event(false);
    name_element = QLatin1String("");
    function_ids.clear();
    function_names.clear();
    function_values.clear();
    permissions.clear();
}

void data_api_element_object_t::populateFunctions() {
    const base::mutex_locker_t locker(&functions_mutex);
    if (view.has_element(id_element)) {
        add_functions();
    }
}

void data_api_element_object_t::add_functions() {
    if (type == element_type::scenario) {
        add_scenario_function();
    } else if (type == element_type::thermostat) {
        add_thermostat_functions();
    } else {
        add_mapped_functions();
    }
}

void data_api_element_object_t::add_mapped_functions() {
    const QMap<QString, QVariant> functions = view.element(id_element)->getFunction_map();
    for (auto function = functions.cbegin(); function != functions.cend(); ++function) {
        // A function that is not connected has no item; it is filed under the empty id.
        const QString id_item = function.value().toString();
        addIdItem(id_item, function.key(), getItemsValue(id_item));
    }
}

void data_api_element_object_t::add_scenario_function() {
    const auto* element = view.element(id_element);
    if (element->getFlags() < 0) {
        add_mapped_functions();
        return;
    }
    if (const auto* scenario = qobject_cast<const psoe_scenario*>(element)) {
        const QString id_scenary = scenario->getScenario_id();
        addIdItem(id_scenary, QStringLiteral("execute"), getScenaryValue(id_scenary));
    }
}

void data_api_element_object_t::add_thermostat_functions() {
    const auto* element = qobject_cast<const psoe_thermo_logic*>(view.element(id_element));
    const auto thermostat = element != nullptr ? view.thermostat(element->getThermoId()) : nullptr;
    if (thermostat == nullptr) {
        return;
    }
    const QMap<QString, QVariant> ids = thermostat->getThermo()->getIds();
    for (auto id = ids.cbegin(); id != ids.cend(); ++id) {
        const QString id_item = id.value().toString();
        if (!id_item.trimmed().isEmpty()) {
            addIdItem(id_item, QStringLiteral("thermo/") + id.key(), getItemsValue(id_item));
        }
    }
    // Both are filed under the window contact and look their value up with a value as the id.
    // Clients see these keys; keep it.
    const QString id_window = thermostat->getIdWindowsContact();
    const QString actual = getItemsValue(thermostat->getThermo()->getIdActual());
    const QString window = getItemsValue(id_window);
    addIdItem(id_window, QStringLiteral("thermo/id_actual"), getItemsValue(actual));
    addIdItem(id_window, QStringLiteral("id_win"), getItemsValue(window));
}

void data_api_element_object_t::addIdItem(const QString& id_item, const QString& function,
                                          const QString& value) {
    if (!function_ids.contains(id_item)) {
        function_ids.insert(id_item, {function});
    }
    if (!function_values.contains(function)) {
        function_values.insert(function, value);
    }
    if (!function_names.contains(function)) {
        function_names.insert(function, id_item);
    }
}

bool data_api_element_object_t::requestSetValue(std::pair<QString, QJsonValue> function_value) {
    const QString id_item = function_names.value(function_value.first);
    if (id_item.isEmpty()) {
        return false;
    }
    if (type == element_type::scenario) {
        const int execute = utility::utility_t::QJsonValueToBool(function_value.second);
        return execute >= 0 && setExecScena(id_item, execute == 1);
    }
    const QString text = utility::utility_t::QjsonValueToNumber(function_value.second);
    return !text.isEmpty() && setItemValue(id_item, text);
}

bool data_api_element_object_t::setExecScena(const QString& id_scenary, bool execute) {
    return view.request_scenary(id_scenary, execute);
}

bool data_api_element_object_t::setItemValue(const QString& id_item, const QString& value) {
    return view.request_item(id_item, value);
}

void data_api_element_object_t::update_value(const QString& _key) {
    log_update(QStringLiteral("Update element ") % name_element % QStringLiteral(" item: ") % _key,
               431);
    const QStringList functions = function_ids.value(_key);
    if (functions.isEmpty()) {
        log_update(QStringLiteral("Functions id is empty"), 435);
        return;
    }
    for (const QString& function : functions) {
        function_values.insert(
            function, type == element_type::scenario ? getScenaryValue(_key) : getItemsValue(_key));
    }
    Q_EMIT value_change(id_element, function_values.to_hash(), functions);
}

void data_api_element_object_t::onRealtimeChangeItem(const QJsonObject&, const QString& _key) {
    const base::mutex_locker_t locker(&events_mutex);
    update_value(_key);
}

void data_api_element_object_t::onRealtimeChangeScenaryObjects(const QJsonObject&,
                                                               const QString& _key) {
    const base::mutex_locker_t locker(&events_mutex);
    if (type != element_type::scenario) {
        return;
    }
    const auto clone = view.clone_element(id_element);
    if (clone == nullptr || clone->getType() != element_type::scenario) {
        return;
    }
    const auto* scenario = qobject_cast<const psoe_scenario*>(clone.get());
    if (scenario == nullptr || scenario->getScenario_id() != _key) {
        return;
    }
    const QStringList functions = function_ids.value(_key);
    if (functions.isEmpty()) {
        return;
    }
    for (const QString& function : functions) {
        function_values.insert(function, getScenaryValue(_key));
    }
    update_value(_key);
}

void data_api_element_object_t::onPersistentStatusThermo(const QJsonObject&, const QString& _key) {
    const base::mutex_locker_t locker(&events_mutex);
    if (type != element_type::thermostat) {
        return;
    }
    const auto* element = qobject_cast<const psoe_thermo_logic*>(view.element(id_element));
    if (element != nullptr && element->getThermoId() == _key) {
        populateFunctions();
    }
}

}  // namespace interfaces

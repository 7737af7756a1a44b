// What data_api_element_object_t tells about its element. Other modules of the server resolve these
// by name: none of them is inline.
#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_t.h"

namespace interfaces {

QString data_api_element_object_t::getIdElement() const {
    return id_element;
}

QString data_api_element_object_t::getNameElement() const {
    return name_element;
}

int data_api_element_object_t::getTypeElement() const {
    return type;
}

QHash<QString, QStringList> data_api_element_object_t::getFunctionIds() const {
    return function_ids.to_hash();
}

QHash<QString, QString> data_api_element_object_t::getFunctioName() const {
    return function_names.to_hash();
}

QHash<QString, QString> data_api_element_object_t::getFunctionValues() const {
    return function_values.to_hash();
}

QString data_api_element_object_t::getItemsValue(const QString& id_item) {
    return view.item_value(id_item);
}

QString data_api_element_object_t::getScenaryValue(const QString& id_scenary) {
    return view.scenary_value(id_scenary);
}

QHash<QString, quint64> data_api_element_object_t::getPermissions() const {
    return permissions.to_hash();
}

bool data_api_element_object_t::getPermission() const {
    return permission;
}

QHash<QString, QString> data_api_element_object_t::getACL() {
    return acl.to_hash();
}

const base::small_table_t<QString>& data_api_element_object_t::values() const {
    return function_values;
}

const base::small_table_t<QString>& data_api_element_object_t::words() const {
    return acl;
}

}  // namespace interfaces

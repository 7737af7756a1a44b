// How each group of the key tree holds the key of a leaf. The constants themselves are in
// cnfserver.cpp.
#include "utility/cnfserver.h"

namespace utility {

cnfserver::cnfserver(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::operator const QString&() const {
    return key;
}

cnfserver::installation_o::installation_o(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::installation_o::operator const QString&() const {
    return key;
}

cnfserver::installation_o::cloud_o::cloud_o(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::installation_o::cloud_o::operator const QString&() const {
    return key;
}

cnfserver::statics_o::drdconf_o::drdconf_o(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::statics_o::drdconf_o::operator const QString&() const {
    return key;
}

cnfserver::statics_o::device_o::device_o(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::statics_o::device_o::operator const QString&() const {
    return key;
}

cnfserver::statics_o::torlan_o::torlan_o(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::statics_o::torlan_o::operator const QString&() const {
    return key;
}

cnfserver::statics_o::torlan_o::comunication_o::global_o::global_o(const char* _key)
    : key(QLatin1String(_key)) {}

cnfserver::statics_o::torlan_o::comunication_o::global_o::operator const QString&() const {
    return key;
}

cnfserver::statics_o::torlan_o::paths_o::paths_o(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::statics_o::torlan_o::paths_o::operator const QString&() const {
    return key;
}

cnfserver::statics_o::torlan_o::urls_o::urls_o(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::statics_o::torlan_o::urls_o::operator const QString&() const {
    return key;
}

cnfserver::statics_o::mosquitto_o::mosquitto_o(QString _key) : key(std::move(_key)) {}

cnfserver::statics_o::mosquitto_o::operator const QString&() const {
    return key;
}

cnfserver::realtime_o::torlan_o::torlan_o(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::realtime_o::torlan_o::operator const QString&() const {
    return key;
}

cnfserver::realtime_o::torlan_o::database_o::database_o(const char* _key)
    : key(QLatin1String(_key)) {}

cnfserver::realtime_o::torlan_o::database_o::operator const QString&() const {
    return key;
}

cnfserver::torlan_o::torlan_o(const char* _key) : key(QLatin1String(_key)) {}

cnfserver::torlan_o::operator const QString&() const {
    return key;
}

}  // namespace utility

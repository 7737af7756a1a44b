#pragma once

#include "utility/cnfserver.h"

namespace utility {

/// "installation/...". The server is addressed with these paths: no "/" at their end.
class cnfserver::installation_o {
 public:
    explicit installation_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const installation_o installation_id;
    static const installation_o mqtt_devices;
    static const installation_o cloud_enabled;
    static const installation_o master_version;
    static const installation_o master;
    static const installation_o master_model;

    class cloud_o;

 private:
    QString key;
};

/// "cloud/...", composed by its users.
class cnfserver::installation_o::cloud_o {
 public:
    explicit cloud_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)

    static const QString base;
    static const cloud_o cloud_api_token;

 private:
    QString key;
};

}  // namespace utility

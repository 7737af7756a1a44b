#pragma once

#include "utility/cnfserver.h"

namespace utility {

/// "static/...". Values are looked up with these paths: all end in "/".
class cnfserver::statics_o {
 public:
    static const QString base;

    class drdconf_o;
    class device_o;
    class torlan_o;
    class mosquitto_o;
};

class cnfserver::statics_o::drdconf_o {
 public:
    explicit drdconf_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const drdconf_o serial;

 private:
    QString key;
};

class cnfserver::statics_o::device_o {
 public:
    explicit device_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const device_o product_code;
    static const device_o product_name;
    static const device_o version;

 private:
    QString key;
};

class cnfserver::statics_o::mosquitto_o {
 public:
    explicit mosquitto_o(QString _key) : key(std::move(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const mosquitto_o mqtt_cloud_url;

 private:
    QString key;
};

}  // namespace utility

#include "utility/cnfserver_statics_torlan.h"  // IWYU pragma: export

#pragma once

#include <QString>

namespace utility {

/// Where the configuration server listens.
static const QString server_address = QStringLiteral("127.0.0.1");
static const QString server_url =
    QStringLiteral("http://") + server_address + QStringLiteral(":4321/");

/// Every key of the configuration document, as a tree that mirrors it.
///
/// Each group is a nested class: `base` is its own path segment, ending in "/"; its leaves are
/// constants of the group's own class that hold the segment without any slash. toString(), where
/// a group has it, is a leaf's full path. Constants exist once the library is loaded and never
/// change; any thread. The whole tree is one header: a group is inside the group above it, and the
/// tree inside its root.
class cnfserver {
 public:
    explicit cnfserver(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)

    /// The configuration server's URL.
    static const QString base;
    /// Appended to a path that is written: the server then runs its triggers.
    static const cnfserver trigger;

    class installation_o;
    class statics_o;
    class realtime_o;
    class torlan_o;

 private:
    QString key;
};

/// "installation/...". The server is addressed with these paths: no "/" at their end.
class cnfserver::installation_o {
 public:
    explicit installation_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)
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
    explicit cloud_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)

    static const QString base;
    static const cloud_o cloud_api_token;

 private:
    QString key;
};

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
    explicit drdconf_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const drdconf_o serial;

 private:
    QString key;
};

class cnfserver::statics_o::device_o {
 public:
    explicit device_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const device_o product_code;
    static const device_o product_name;
    static const device_o version;

 private:
    QString key;
};

/// "static/torlan/...". The leaf `comunication` is the whole object that comunication_o's keys
/// are in.
class cnfserver::statics_o::torlan_o {
 public:
    explicit torlan_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const torlan_o comunication;
    static const torlan_o zeroconf;

    class comunication_o;
    class paths_o;
    class urls_o;

 private:
    QString key;
};

class cnfserver::statics_o::torlan_o::comunication_o {
 public:
    static const QString base;

    class global_o;
};

class cnfserver::statics_o::torlan_o::comunication_o::global_o {
 public:
    explicit global_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const global_o installation_id;

 private:
    QString key;
};

class cnfserver::statics_o::torlan_o::paths_o {
 public:
    explicit paths_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const paths_o cacerts;
    static const paths_o plugins;
    static const paths_o logs;
    static const paths_o client_communication;
    static const paths_o system_ca_certs;

 private:
    QString key;
};

class cnfserver::statics_o::torlan_o::urls_o {
 public:
    explicit urls_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const urls_o cloud_service;
    static const urls_o cloud_web;

 private:
    QString key;
};

class cnfserver::statics_o::mosquitto_o {
 public:
    explicit mosquitto_o(QString _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const mosquitto_o mqtt_cloud_url;

 private:
    QString key;
};

/// "realtime/...". The paths of these groups are composed by their users.
class cnfserver::realtime_o {
 public:
    static const QString base;

    class torlan_o;
};

class cnfserver::realtime_o::torlan_o {
 public:
    explicit torlan_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)

    static const QString base;
    static const torlan_o database;

    class database_o;

 private:
    QString key;
};

class cnfserver::realtime_o::torlan_o::database_o {
 public:
    explicit database_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)

    static const QString base;
    static const database_o installation;

 private:
    QString key;
};

/// "torlan/..." at the root of the document.
class cnfserver::torlan_o {
 public:
    explicit torlan_o(const char* _key);
    operator const QString&() const;  // NOLINT(google-explicit-constructor)

    static const QString base;
    static const torlan_o database;
    static const torlan_o presencesimulation;
    static const torlan_o preserved_realtime;
    static const torlan_o baos_stick_params;

 private:
    QString key;
};

}  // namespace utility

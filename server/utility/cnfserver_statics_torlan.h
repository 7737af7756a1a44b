#pragma once

#include "utility/cnfserver_statics.h"

namespace utility {

/// "static/torlan/...". The leaf `comunication` is the whole object that comunication_o's keys
/// are in.
class cnfserver::statics_o::torlan_o {
 public:
    explicit torlan_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)
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
    explicit global_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const global_o installation_id;

 private:
    QString key;
};

class cnfserver::statics_o::torlan_o::paths_o {
 public:
    explicit paths_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)
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
    explicit urls_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)
    QString toString() const;

    static const QString base;
    static const urls_o cloud_service;
    static const urls_o cloud_web;

 private:
    QString key;
};

}  // namespace utility

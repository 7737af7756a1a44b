#pragma once

#include "utility/cnfserver.h"

namespace utility {

/// "realtime/...". The paths of these groups are composed by their users.
class cnfserver::realtime_o {
 public:
    static const QString base;

    class torlan_o;
};

class cnfserver::realtime_o::torlan_o {
 public:
    explicit torlan_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)

    static const QString base;
    static const torlan_o database;

    class database_o;

 private:
    QString key;
};

class cnfserver::realtime_o::torlan_o::database_o {
 public:
    explicit database_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)

    static const QString base;
    static const database_o installation;

 private:
    QString key;
};

/// "torlan/..." at the root of the document.
class cnfserver::torlan_o {
 public:
    explicit torlan_o(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)

    static const QString base;
    static const torlan_o database;
    static const torlan_o presencesimulation;
    static const torlan_o preserved_realtime;
    static const torlan_o baos_stick_params;

 private:
    QString key;
};

}  // namespace utility

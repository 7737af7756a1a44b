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
/// change; any thread.
class cnfserver {
 public:
    explicit cnfserver(const char* _key) : key(QLatin1String(_key)) {}
    operator const QString&() const { return key; }  // NOLINT(google-explicit-constructor)

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

}  // namespace utility

#include "utility/cnfserver_installation.h"  // IWYU pragma: export
#include "utility/cnfserver_realtime.h"      // IWYU pragma: export
#include "utility/cnfserver_statics.h"       // IWYU pragma: export

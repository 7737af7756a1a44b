#pragma once

#include "utility/torlan_option_t.h"

/// Makes the options as the host program does, and takes them away again.
class options_guard_t {
 public:
    options_guard_t() { create(); }
    ~options_guard_t() { utility::torlan_option_t::destroyInstance(); }
    Q_DISABLE_COPY_MOVE(options_guard_t)

    static utility::torlan_option_t* create(const QString& _version = QStringLiteral("1.2.3")) {
        return utility::torlan_option_t::createInstance(
            nullptr, QStringLiteral("linux"), _version,
            QJsonObject{{QStringLiteral("server"), _version},
                        {QStringLiteral("api"), QStringLiteral("v1")}},
            QStringLiteral("main"), QStringLiteral("0123abc"), QStringLiteral("2024-05-06"),
            nullptr);
    }

    utility::torlan_option_t* operator->() const { return utility::torlan_option_t::getInstance(); }
};

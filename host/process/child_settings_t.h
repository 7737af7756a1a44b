#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <chrono>
#include <optional>

#include "process/private_folder_t.h"

namespace process {

/// What is run as a child, and what it is allowed.
struct child_settings_t {
    QString program;
    QStringList arguments{};
    std::optional<system_account_t> account{};  ///< runs as this one; nothing: as the host
    QList<int> inherited{};  ///< descriptors that it has too, by the same numbers
    /// It writes where the host writes, instead of being read: nothing of it is said().
    bool writes_itself = false;
    int descriptors = 0;  ///< may have as many open if the system allows; 0: as the host

    std::chrono::milliseconds start_timeout{5'000};  ///< from a launch until ready; 0: none
    QString not_ready{};  ///< last words of one that was not ready by then
    std::chrono::milliseconds stop_timeout{1'000};  ///< until it is killed
    std::chrono::milliseconds restart_shortest{200};
    std::chrono::milliseconds restart_longest{30'000};

    /// What a line of its output says, without its time stamp for instance; null: all of it.
    QString (*words)(const QString& _line) = nullptr;
};

}  // namespace process

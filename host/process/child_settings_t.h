#pragma once

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
    int inherited = -1;   ///< descriptor that it has too, by the same number; -1: none
    int descriptors = 0;  ///< may have as many open if the system allows; 0: as the host

    std::chrono::milliseconds start_timeout{5'000};  ///< from a launch until it is ready
    QString not_ready{};  ///< last words of one that was not ready by then
    std::chrono::milliseconds stop_timeout{1'000};  ///< until it is killed
    std::chrono::milliseconds restart_shortest{200};
    std::chrono::milliseconds restart_longest{30'000};

    /// What a line of its output says, without its time stamp for instance; null: all of it.
    QString (*words)(const QString& _line) = nullptr;
};

}  // namespace process

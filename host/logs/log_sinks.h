#pragma once

#include <memory>

#include "logs/log_settings_t.h"

namespace spdlog::sinks {
class sink;
}

namespace utility::logs {

/// The rotating file, mode 0640. A file that is taken away under it is made again, with its folder.
/// Throws when there can be none.
std::shared_ptr<spdlog::sinks::sink> make_file_sink(const log_settings_t& _settings);

/// Standard output, by a console_t. Its end is told in @p _file.
std::shared_ptr<spdlog::sinks::sink> make_console_sink(
    const log_settings_t& _settings, const std::shared_ptr<spdlog::sinks::sink>& _file);

/// Seven levels, 0 the gravest, on spdlog's scale.
int on_spdlog_scale(int _level);

}  // namespace utility::logs

#include "chosen_log.h"

#include "utility/torlan_option_t.h"

namespace torlan {

using utility::torlan_option_t;

utility::logs::log_settings_t chosen_log(const QString& _folder) {
    utility::logs::log_settings_t log;
    log.folder = _folder;
    log.name = torlan_option_t::LogFileName();
    log.size_mb = static_cast<int>(torlan_option_t::LogSize());
    log.rotation = static_cast<int>(torlan_option_t::LogRotate());
    log.stdout_level = static_cast<int>(torlan_option_t::LogLevelStd());
    log.file_level = static_cast<int>(torlan_option_t::LogLevelFile());
    return log;
}

}  // namespace torlan

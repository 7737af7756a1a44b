#include "chosen_log.h"

#include "utility/torlan_option_t.h"

namespace torlan {

using utility::torlan_option_t;

utility::logs::log_settings_t chosen_log(const QString& _folder) {
    const QString folder = torlan_option_t::LogsFolder();
    utility::logs::log_settings_t log;
    log.folder = folder.isEmpty() ? _folder : folder;
    log.name = torlan_option_t::LogFileName();
    log.size_mb = static_cast<int>(torlan_option_t::LogSize());
    log.rotation = static_cast<int>(torlan_option_t::LogRotate());
    log.stdout_level = static_cast<int>(torlan_option_t::LogLevelStd());
    log.file_level = static_cast<int>(torlan_option_t::LogLevelFile());
    return log;
}

}  // namespace torlan

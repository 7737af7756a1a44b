// Setters.
#include "utility/torlan_option_t.h"

namespace utility {

void torlan_option_t::set_log_level_std(unsigned int _level) {
    log_level_std = _level;
}

void torlan_option_t::set_log_level_file(unsigned int _level) {
    log_level_file = _level;
}

void torlan_option_t::set_log_size(unsigned int _megabytes) {
    log_size = _megabytes;
}

void torlan_option_t::set_log_rotate(unsigned int _files) {
    log_rotate = _files;
}

void torlan_option_t::set_level_bus_monitor(int _level) {
    level_bus_monitor = _level;
}

void torlan_option_t::set_avahi_browse_option(bool _browse) {
    avahi_browse = _browse;
}

void torlan_option_t::set_special_fuction_for_testing(bool _on) {
    special_function_for_testing = _on;
}

}  // namespace utility

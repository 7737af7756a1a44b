#pragma once

#include <QString>

namespace loader {

/// Why a file is not a driver of this host.
enum class refusal_reason_t {
    none,                 ///< not refused
    unreadable,           ///< the file or folder cannot be opened or read
    changeable,           ///< other users of this machine could change it
    not_a_library,        ///< no ELF shared object
    other_platform,       ///< made for another byte order
    damaged,              ///< ends early or points outside itself
    no_metadata,          ///< a library, but no plugin
    malformed_metadata,   ///< its metadata cannot be understood
    other_interface,      ///< a plugin of something else
    duplicate,            ///< the same file under another name
    not_loadable,         ///< the dynamic linker refused it
    missing_entry_point,  ///< one of the two entry points is not there
    threw,                ///< its constructor threw
    no_instance,          ///< it made no object
    not_a_driver          ///< its object does not answer to the driver interface
};

/// A reason and one sentence about it.
struct refusal_t {
    refusal_reason_t reason = refusal_reason_t::none;
    QString text;

    explicit operator bool() const { return reason != refusal_reason_t::none; }
};

/// A file that was looked at and left out.
struct refused_file_t {
    QString file;
    refusal_reason_t reason = refusal_reason_t::none;
    QString text;
};

}  // namespace loader

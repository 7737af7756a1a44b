#pragma once

#include <QObject>

namespace kit {

/// Number of connections of @p _sender to a signal, given as SIGNAL(...).
inline int receivers(const QObject* _sender, const char* _signal) {
    struct access_t : QObject {
        static auto pointer() { return &access_t::receivers; }
    };
    return (_sender->*access_t::pointer())(_signal);
}

}  // namespace kit

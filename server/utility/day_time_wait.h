#pragma once

#include <QTime>

namespace utility {

/// Calls @p _serve until the time of day that @p _now tells reaches @p _deadline. Times of day
/// wrap: a deadline behind midnight is already reached, so that wait ends at once.
template <class Clock, class Serve>
void serve_until(const QTime& _deadline, Clock _now, Serve _serve) {
    while (_now() < _deadline) {
        _serve();
    }
}

/// Serves for @p _seconds by the clock @p _now.
template <class Clock, class Serve>
void serve_seconds(int _seconds, Clock _now, Serve _serve) {
    serve_until(_now().addSecs(_seconds), _now, _serve);
}

/// Serves for @p _milliseconds by the clock @p _now.
template <class Clock, class Serve>
void serve_milliseconds(int _milliseconds, Clock _now, Serve _serve) {
    serve_until(_now().addMSecs(_milliseconds), _now, _serve);
}

}  // namespace utility

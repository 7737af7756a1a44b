#pragma once

#include <QHash>
#include <QString>
#include <deque>
#include <optional>

#include "endpoint/request_limits_t.h"
#include "endpoint/request_t.h"

namespace comunication {

/// Requests that wait, one bounded lane a user, served in turn: whoever fills a lane keeps nobody
/// else waiting. Every operation takes constant time. Not thread-safe.
class request_lanes_t {
 public:
    explicit request_lanes_t(const request_limits_t& _limits) : limits(_limits) {}

    /// False: the user's lane or the room of all is full and the request is not taken.
    bool push(request_t _request);

    /// The oldest request of the user whose turn it is; nothing: none waits.
    std::optional<request_t> pop();

    void clear();
    std::size_t bytes() const { return held; }

 private:
    struct lane_t {
        std::deque<request_t> requests;
        std::size_t bytes = 0;
    };

    const request_limits_t limits;
    QHash<QString, lane_t> lanes;  ///< none is empty
    std::deque<QString> turns;     ///< the lanes' users, the next one first
    std::size_t held = 0;          ///< bytes in all
};

}  // namespace comunication

#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <deque>
#include <optional>

#include "endpoint/request_limits_t.h"
#include "endpoint/request_t.h"

namespace comunication {

/// Requests that wait, one bounded lane a user, served in turn and one of a user at a time:
/// whoever fills a lane keeps nobody else waiting. Every operation takes constant time. Not
/// thread-safe.
class request_lanes_t {
 public:
    explicit request_lanes_t(const request_limits_t& _limits) : limits(_limits) {}

    /// False: the user's lane or the room of all is full and the request is not taken.
    bool push(request_t _request);

    /// The oldest request of the user whose turn it is, who has no other turn until release();
    /// nothing: none waits but those of users who are being served.
    std::optional<request_t> pop();

    /// The next request of @p _user, who has the turn, if it @p _fits.
    std::optional<request_t> pop_more(const QString& _user, bool (*_fits)(const request_t&));

    /// What pop() gave of this user is done.
    void release(const QString& _user);

    /// Forgets what waits.
    void clear();
    std::size_t bytes() const { return held; }

 private:
    struct lane_t {
        std::deque<request_t> requests;
        std::size_t bytes = 0;
    };

    using lanes_t = QHash<QString, lane_t>;

    request_t take_first(lanes_t::iterator _lane);

    const request_limits_t limits;
    lanes_t lanes;              ///< none is empty
    std::deque<QString> turns;  ///< the lanes' users but those served, the next one first
    QSet<QString> served;
    std::size_t held = 0;  ///< bytes in all
};

}  // namespace comunication

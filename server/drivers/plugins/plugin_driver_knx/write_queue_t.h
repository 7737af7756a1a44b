#pragma once

#include <QHash>
#include <deque>
#include <optional>

#include "knx/telegram_t.h"

namespace knx {

/// Telegrams that wait for their turn, in order, bounded.
class write_queue_t {
 public:
    enum class taken_t {
        added,
        replaced,  ///< the older value for the address is not sent
        full,      ///< this one is not sent
    };

    explicit write_queue_t(std::size_t _limit) : limit(_limit) {}

    /// @param _is_state whether the telegram may take the place of one that waits for the address,
    /// and may give its own place
    taken_t push(const telegram_t& _telegram, bool _is_state);

    std::optional<telegram_t> take();

    std::size_t size() const { return waiting.size(); }
    bool is_empty() const { return waiting.empty(); }
    void clear();

 private:
    const std::size_t limit;
    std::deque<telegram_t> waiting;
    quint64 first = 0;                       ///< number of the first that waits; it only grows
    QHash<group_address_t, quint64> states;  ///< numbers of those that may be replaced
};

}  // namespace knx

#pragma once

#include <QByteArray>
#include <QJsonObject>

#include "comunication/api_topic_t.h"

namespace comunication {

/// What the endpoint does with a message of the broker.
struct incoming_t {
    enum class action_t {
        ignore,
        pass_on,  ///< a status message, to the drivers
        take,     ///< a request, which waits for its turn
        clear,    ///< a retained request: it would run again at every subscription
    };

    action_t action = action_t::ignore;
    api_topic_t levels;
    QJsonObject payload;  ///< to pass on; empty for a message that holds no object

    /// Pure. @p _enabled: drivers take messages; retained requests are cleared in any case.
    static incoming_t judge(const QString& _topic, const QByteArray& _payload, bool _retain,
                            bool _enabled);
};

}  // namespace comunication

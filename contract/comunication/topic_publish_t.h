#pragma once

#include <QString>

#include "comunication/qos_t.h"

namespace comunication::utility {

/// How the host publishes on a topic template.
struct topic_publish_t {
    QString topic;   ///< topic template, placeholders not yet replaced
    qos_t qos;       ///< quality of service
    bool retain;     ///< whether the broker keeps the message
    QString bridge;  ///< name of the broker bridge; empty: local only
};

}  // namespace comunication::utility

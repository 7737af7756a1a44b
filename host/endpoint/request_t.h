#pragma once

#include <QByteArray>
#include <QString>

#include "comunication/api_topic_t.h"

namespace comunication {

/// One request as it came from the broker, not yet read.
struct request_t {
    api_topic_t levels;
    QString topic;
    QByteArray payload;

    /// What it is charged in a queue.
    std::size_t bytes() const { return std::size_t(topic.size()) + std::size_t(payload.size()); }
};

}  // namespace comunication

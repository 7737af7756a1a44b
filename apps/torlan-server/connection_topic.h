#pragma once

#include <QString>

#include "database/database_t.h"

namespace torlan {

/// Readable by every API user; empty for an installation without a topic.
inline QString connection_topic(const database::database_t& _database) {
    const QString topic = _database.getPersistent()->getTopicbase()->getTopic();
    return topic.isEmpty() ? QString() : QStringLiteral("local/%1/connection").arg(topic);
}

}  // namespace torlan

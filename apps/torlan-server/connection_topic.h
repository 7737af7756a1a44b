#pragma once

#include <QString>

#include "comunication/api_topics.h"
#include "database/database_t.h"

namespace torlan {

/// Readable by every API user; empty for an installation without a topic.
inline QString connection_topic(const database::database_t& _database) {
    const QString topic = _database.getPersistent()->getTopicbase()->getTopic();
    return topic.isEmpty() ? QString() : comunication::api_topics::connection(topic);
}

}  // namespace torlan

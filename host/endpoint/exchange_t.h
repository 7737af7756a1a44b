#pragma once

#include <QJsonObject>
#include <QString>

#include "comunication/api_topic_t.h"

namespace comunication {

/// A request and what became of it.
struct exchange_t {
    api_topic_t levels{};
    QString topic{};  ///< of the request
    QJsonObject request{};
    QJsonObject answer{};  ///< an object with "error": it was refused, or failed
    bool is_answered = false;
    qint64 bytes = 0;  ///< of the request; 0: it was refused unread
};

}  // namespace comunication

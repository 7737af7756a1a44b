#pragma once

#include <QString>
#include <QStringList>

#include "comunication/qos_t.h"

namespace comunication::utility {

/// What the host subscribes to: a topic template and the bridges over which it does so as well.
struct topic_subscribe_t {
    QString topic;        ///< topic template, placeholders not yet replaced
    qos_t qos;            ///< quality of service asked for
    QStringList bridges;  ///< names of the broker bridges; empty: local only
};

}  // namespace comunication::utility

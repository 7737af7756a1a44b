#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <optional>

#include "accounts/broker_event_t.h"

namespace accounts {

/// One report of the broker's plugin.
struct broker_report_t {
    quint64 number = 0;
    QList<broker_event_t> events;
    qint64 lost = 0;       ///< events that found no room
    QStringList sessions;  ///< to be deleted, by client identifier

    /// Nothing: it is none. Lines that are not understood are left out.
    static std::optional<broker_report_t> parse(const QByteArray& _text);
};

}  // namespace accounts

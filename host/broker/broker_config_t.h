#pragma once

#include <QByteArray>

#include "broker/broker_settings_t.h"

namespace broker {

/// The text of the broker's configuration. Pure.
struct broker_config_t {
    /// mosquitto.conf; @p _account_lines: what is said about accounts, whole lines.
    static QByteArray configuration(const broker_settings_t& _settings,
                                    const QByteArray& _account_lines);
};

}  // namespace broker

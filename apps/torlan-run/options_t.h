#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "base/result_t.h"

namespace torlan {

/// What torlan-run was asked to do.
struct options_t {
    QString data = QStringLiteral("var");  ///< absolute after parse_options()
    quint16 config_port = 4321;            ///< of the configuration server, on loopback
    std::optional<quint16> web_port;       ///< the console's; nothing: a free one will do
    bool no_web = false;                   ///< no console
    std::optional<quint16> port;           ///< the broker's, read for the server and handed on
    std::optional<quint16> ws_port;        ///< the same, of its WebSockets; 0: none
    QString user;                          ///< system account to become; empty: stay who starts it
    bool is_knx_demo = false;              ///< a bus of its own, and devices on it
    QStringList server;                    ///< everything else, for the server; it reads them
    QStringList once;                      ///< of those, what counts at the first launch only
    QString to_show;  ///< to be printed instead of all that: help, version; empty: none
};

/// Reads a command line, its first argument the program.
base::result_of_t<options_t> parse_options(const QStringList& _arguments);

}  // namespace torlan

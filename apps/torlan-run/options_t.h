#pragma once

#include <QString>
#include <QStringList>

#include "base/result_t.h"

namespace torlan {

/// What torlan-run was asked to do.
struct options_t {
    QString data = QStringLiteral("var");  ///< absolute after parse_options()
    quint16 config_port = 4321;            ///< of the configuration server, on loopback
    QString user;                          ///< system account to become; empty: stay who starts it
    bool is_knx_demo = false;              ///< a bus of its own, and devices on it
    QStringList server;                    ///< everything else, for the server; it reads them
    QStringList once;                      ///< of those, what counts at the first launch only
    QString to_show;  ///< to be printed instead of all that: help, version; empty: none
};

/// Reads a command line, its first argument the program.
base::result_of_t<options_t> parse_options(const QStringList& _arguments);

}  // namespace torlan

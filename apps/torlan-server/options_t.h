#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "base/result_t.h"
#include "bus/bus_settings_t.h"
#include "endpoint/request_limits_t.h"

namespace torlan {

/// What torlan-server was asked to do.
struct options_t {
    QString data = QStringLiteral("var");
    quint16 port = 1883;
    quint16 ws_port = 0;         ///< 0: no WebSockets
    quint16 config_port = 4321;  ///< of the configuration server, on loopback
    int session_hours = 168;     ///< how long the broker keeps a session without a connection
    int config_wait = 15;        ///< seconds to wait for it, 0 to 3600
    QString plugins;             ///< folder of drivers; empty: beside the program
    QString logs;                ///< folder of the log; empty: in the data folder
    bool simulate = false;
    bus::bus_settings_t knx;                ///< without an address: no bus
    comunication::request_limits_t limits;  ///< of each API user
    // As shipped when nothing is given.
    std::optional<unsigned> stdout_level;  ///< 0 to 6
    std::optional<unsigned> file_level;    ///< 0 to 6
    std::optional<unsigned> log_size;      ///< megabytes, 1 to 1024
    std::optional<unsigned> log_rotate;    ///< files, 0 to 1000
    QString broker_program;                ///< empty: the system's
    QString import_file;                   ///< replaces the installation; empty: none
    QString sample_file;  ///< imported when there is no installation yet; empty: none
    int supervisor = -1;  ///< socket of the program that supervises; -1: none does
    QString console;      ///< address of the console, to be shown; empty: there is none
    QString user;         ///< system account to become; empty: stay who starts it
    QString to_show;      ///< to be printed instead of all that: help, version; empty: none
};

/// Reads a command line, its first argument the program. The data folder becomes absolute.
base::result_of_t<options_t> parse_options(const QStringList& _arguments);

}  // namespace torlan

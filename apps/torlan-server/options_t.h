#pragma once

#include <QString>
#include <QStringList>

namespace torlan {

/// What torlan-server was asked to do.
struct options_t {
    QString data = QStringLiteral("var");
    quint16 port = 1883;
    quint16 ws_port = 0;  ///< 0: no WebSockets
    QString plugins;      ///< folder of drivers
    bool simulate = false;
    int stdout_level = 4;
    QString broker_program;  ///< empty: the system's
    QString import_file;     ///< replaces the installation; empty: none
    QString sample_file;     ///< imported when there is no installation yet; empty: none
};

/// Options that were read, or what to say instead of starting.
struct options_result_t {
    options_t options;
    QString error;  ///< one sentence; empty: none
    QString text;   ///< help or version to be printed; empty: none
};

/// Reads a command line, its first argument the program. The data folder becomes absolute.
options_result_t parse_options(const QStringList& _arguments);

}  // namespace torlan

#pragma once

#include <QString>

namespace utility::logs {

/// How the host's logger writes. A sink takes a line when the line's level is at most the sink's;
/// a sink level of -1 takes none.
struct log_settings_t {
    QString folder;                                  ///< exists; the files are made in it
    QString name = QStringLiteral("server-torlan");  ///< file name without ".log"
    int size_mb = 25;                                ///< of one file, at least 1
    int rotation = 5;                                ///< former files that are kept, 0 to 1000
    int stdout_level = 4;                            ///< level of standard output
    int file_level = 5;                              ///< level of the file
    int queue = 8192;                                ///< lines that may wait, at least 1
};

}  // namespace utility::logs

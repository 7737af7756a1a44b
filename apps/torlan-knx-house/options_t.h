#pragma once

#include <QString>
#include <QStringList>

#include "base/result_t.h"

namespace torlan {

/// What torlan-knx-house was asked to do.
struct options_t {
    QString data;         ///< folder of the installation that is played
    QString url;          ///< of knxd
    int supervisor = -1;  ///< descriptor, see supervisor_link_t
    QString to_show;      ///< to be printed instead of all that: help, version; empty: none
};

/// Reads a command line, its first argument the program.
base::result_of_t<options_t> parse_options(const QStringList& _arguments);

}  // namespace torlan

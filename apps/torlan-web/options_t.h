#pragma once

#include <QString>
#include <QStringList>

#include "base/result_t.h"

namespace torlan {

/// What torlan-web was asked to do.
struct options_t {
    QString pages;        ///< folder of the page's files
    QString facts;        ///< file of what the server tells the page; empty: none
    quint16 port = 0;     ///< 0: a free one
    quint16 ws_port = 0;  ///< where the broker takes WebSockets
    int supervisor = -1;  ///< socket of the program that supervises; -1: none does
    QString user;         ///< system account to become; empty: stay who starts it
    QString to_show;      ///< to be printed instead of all that: help, version; empty: none
};

/// Reads a command line, its first argument the program.
base::result_of_t<options_t> parse_options(const QStringList& _arguments);

}  // namespace torlan

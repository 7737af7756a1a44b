#pragma once

#include <QStringList>

#include "base/result_t.h"

namespace torlan {

/// One command: what people type, what they read about it, what it does.
struct command_t {
    const char* name;       ///< one or two words
    const char* arguments;  ///< their names, separated by blanks
    const char* help;       ///< one line

    /// Gets as many arguments as are named; an error is one sentence.
    base::result_t (*run)(const QString& _data, const QStringList& _arguments);

    bool needs_data = true;  ///< whether it works on an installation
    bool changes = false;    ///< what a server may have to follow
    /// Judges the arguments of a command that takes options; null: they are counted.
    base::result_t (*check)(const QStringList& _arguments) = nullptr;

    QStringList words() const { return QString::fromLatin1(name).split(QLatin1Char(' ')); }
    qsizetype argument_count() const {
        return QString::fromLatin1(arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts).size();
    }
};

}  // namespace torlan

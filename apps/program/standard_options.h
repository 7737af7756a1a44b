#pragma once

#include <QString>
#include <QStringList>

#include "base/result_t.h"

class QCommandLineParser;

namespace torlan {

/// Adds what every program can be asked: --help and --version.
void add_standard_options(QCommandLineParser* _parser);

/// What they ask to be shown, instead of doing anything else; empty: nothing.
/// @param _parser has parsed a command line
QString standard_answer(const QCommandLineParser& _parser);

/// Has @p _parser parse the command line of a program that takes options only, and yields
/// standard_answer(). A failure is one sentence.
base::result_of_t<QString> read_options(QCommandLineParser* _parser, const QStringList& _arguments);

}  // namespace torlan

#pragma once

#include <QString>

class QCommandLineParser;

namespace torlan {

/// Adds what every program can be asked: --help and --version.
void add_standard_options(QCommandLineParser* _parser);

/// What they ask to be shown, instead of doing anything else; empty: nothing.
/// @param _parser has parsed a command line
QString standard_answer(const QCommandLineParser& _parser);

}  // namespace torlan

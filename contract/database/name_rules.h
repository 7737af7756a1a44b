#pragma once

#include <QString>

namespace database {

/// Why a text is no identifier or user name, as the end of a sentence ("must be ..."); empty: it
/// is one. Identifiers are topic levels, hence the narrow alphabet.
QString identifier_error(const QString& _text);

/// Why a text is no installation topic; empty: it is one.
QString topic_error(const QString& _topic);

/// Why a text is no display name or function name: control characters, broken Unicode; empty:
/// it is one.
QString plain_text_error(const QString& _text);

/// Why a text is no item value: a NUL character, broken Unicode; empty: it is one.
QString value_error(const QString& _value);

/// A text from a document or a command line, quoted, short and on one line, for a sentence.
QString quoted(const QString& _text);

}  // namespace database

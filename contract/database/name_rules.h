#pragma once

#include <QString>

namespace database {

/// Why a text is no identifier or user name, as the end of a sentence ("must be ..."); empty: it
/// is one. Identifiers are topic levels, hence the narrow alphabet. Everybody who takes or keeps
/// names asks here: documents, the store (schema.sql says the same in SQL), the broker, topics.
QString identifier_error(const QString& _text);

/// Why a text is no installation topic; empty: it is one.
QString topic_error(const QString& _topic);

/// Why a text is no display name or function name: control characters, broken Unicode; empty:
/// it is one.
QString plain_text_error(const QString& _text);

/// Why a text is no item value: a NUL character, broken Unicode; empty: it is one.
QString value_error(const QString& _value);

/// A text that plain_text_error() accepts: each control character becomes a blank, half a character
/// a question mark.
QString cleaned_text(const QString& _text);

/// A text that value_error() accepts: without its NUL characters, half a character becomes a
/// question mark.
QString cleaned_value(const QString& _value);

/// A text from a document, a row or a command line as a sentence can hold it: short, on one line.
QString shown(const QString& _text);

/// The same in quotation marks.
QString quoted(const QString& _text);

}  // namespace database

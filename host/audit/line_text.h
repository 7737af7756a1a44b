#pragma once

#include <QByteArray>
#include <optional>

#include "audit/entry_t.h"

/// Entries as lines of the file. Pure functions.
namespace audit {

/// Longest text of an entry, in UTF-16 units; what is longer is cut and ends with an ellipsis.
constexpr qsizetype max_text = 128;

/// With every text as long as a line may hold it.
entry_t shortened(entry_t _entry);

/// "2026-11-22T06:10:42.123Z".
QString time_text(qint64 _time);

/// One JSON object with its line end; what is empty is left out. Control characters are escaped, so
/// that one entry is one line, whoever chose the texts.
QByteArray line_of(const entry_t& _entry);

/// The same back; nothing: it is no such line, or half of one.
std::optional<entry_t> entry_of(const QByteArray& _line);

}  // namespace audit

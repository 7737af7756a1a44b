#pragma once

#include <QString>
#include <QStringList>

namespace torlan {

/// Letters to insert, take out, exchange or swap until one word is the other.
int steps_between(const QString& _one, const QString& _other);

/// What somebody meant who typed @p _word: the first of those that are the fewest steps away, a
/// third of its letters at most; empty: none is.
QString nearest_word(const QString& _word, const QStringList& _known);

/// " Did you mean user add?"; empty: nobody knows.
QString suggestion(const QString& _word, const QStringList& _known);

}  // namespace torlan

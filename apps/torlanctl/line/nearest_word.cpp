#include "line/nearest_word.h"

#include <QList>
#include <algorithm>
#include <utility>

namespace torlan {

namespace {

/// Longer words are nobody's slip.
constexpr qsizetype longest_word = 80;

}  // namespace

int steps_between(const QString& _one, const QString& _other) {
    const qsizetype width = _other.size() + 1;
    QList<int> before(width);  // of the row two above
    QList<int> last(width);
    QList<int> row(width);
    for (qsizetype j = 0; j < width; ++j) {
        row[j] = int(j);
    }
    for (qsizetype i = 1; i <= _one.size(); ++i) {
        before = std::exchange(last, std::exchange(row, QList<int>(width)));
        row[0] = int(i);
        for (qsizetype j = 1; j < width; ++j) {
            const bool same = _one[i - 1] == _other[j - 1];
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && _one[i - 1] == _other[j - 2] && _one[i - 2] == _other[j - 1]) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
    }
    return row.constLast();
}

QString nearest_word(const QString& _word, const QStringList& _known) {
    int fewest = int(std::max<qsizetype>(_word.size() / 3, 1)) + 1;
    QString nearest;
    for (const QString& candidate : _known) {
        const bool is_near =
            std::abs(candidate.size() - _word.size()) < fewest && _word.size() <= longest_word;
        const int steps = is_near ? steps_between(_word, candidate) : fewest;
        if (steps < fewest) {
            fewest = steps;
            nearest = candidate;
        }
    }
    return nearest;
}

QString suggestion(const QString& _word, const QStringList& _known) {
    const QString nearest = nearest_word(_word, _known);
    return nearest.isEmpty() ? QString() : QStringLiteral(" Did you mean %1?").arg(nearest);
}

}  // namespace torlan

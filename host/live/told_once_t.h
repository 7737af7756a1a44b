#pragma once

#include <QSet>
#include <QStringList>

namespace database::live {

/// Remembers what was told, so that a row that stays wrong is told once and not at every look.
class told_once_t {
 public:
    /// How many sentences it remembers; then it says that it tells no more.
    static constexpr qsizetype limit = 1000;

    /// Those of @p _sentences that were not told before.
    QStringList fresh(const QStringList& _sentences) {
        QStringList news;
        for (const QString& sentence : _sentences) {
            if (told.size() < limit && !told.contains(sentence)) {
                told.insert(sentence);
                news.append(told.size() < limit
                                ? sentence
                                : QStringLiteral("More rows than %1 are left out or cleaned; the "
                                                 "others are not told.")
                                      .arg(limit - 1));
            }
        }
        return news;
    }

 private:
    QSet<QString> told;
};

}  // namespace database::live

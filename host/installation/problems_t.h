#pragma once

#include <QString>
#include <QStringList>

namespace database::installation {

/// What is wrong with a document: the first problems in words, the others counted.
class problems_t {
 public:
    /// In words.
    static constexpr int most_sentences = 100;

    /// @param _place keys from the document's root; empty: the document itself.
    void add(const QStringList& _place, const QString& _sentence);

    bool is_empty() const { return count == 0; }

    /// "elements/e-lamp/type: must be ... (and 2 more)"; empty when there is no problem.
    QString summary() const;

    /// "elements/e-lamp/type: must be ..." of each, and in the end how many more there are.
    QStringList all() const;

 private:
    QStringList sentences;
    int count = 0;
};

}  // namespace database::installation

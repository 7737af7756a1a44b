#pragma once

#include <QString>
#include <QStringList>

namespace database::installation {

/// What is wrong with a document: the first problem in words, the others counted.
class problems_t {
 public:
    /// @param _place keys from the document's root; empty: the document itself.
    void add(const QStringList& _place, const QString& _sentence);

    bool is_empty() const { return count == 0; }

    /// "elements/e-lamp/type: must be ... (and 2 more)"; empty when there is no problem.
    QString summary() const;

 private:
    QString first;
    int count = 0;
};

}  // namespace database::installation

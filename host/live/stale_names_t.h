#pragma once

#include <QHash>
#include <QString>
#include <set>

namespace database::live {

/// Names of users who are gone and whose rights drivers still remember: an element keeps a name's
/// bits until it is read again. Whoever comes under such a name must not get them.
class stale_names_t {
 public:
    /// @p _elements that this name could do something with, and that were not read again.
    void add(const QString& _name, const std::set<QString>& _elements);

    bool contains(const QString& _name) const { return elements.contains(_name); }

    /// Elements to be read again before this name can be used; forgets it.
    std::set<QString> take(const QString& _name) { return elements.take(_name); }

    /// This element is read again.
    void renew(const QString& _element);

    /// Every element is read again.
    void clear() { elements.clear(); }

    qsizetype size() const { return elements.size(); }

 private:
    QHash<QString, std::set<QString>> elements;
};

}  // namespace database::live

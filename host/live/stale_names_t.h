#pragma once

#include <QHash>
#include <QString>
#include <optional>
#include <set>

namespace database::live {

/// Names of users who are gone and whose rights drivers still remember: an element keeps a name's
/// bits until it is read again. Whoever comes under such a name must not get them.
class stale_names_t {
 public:
    /// @param _most_rights that are remembered one by one; of a name that comes on top of them only
    ///        that any element may know it
    explicit stale_names_t(qsizetype _most_rights = 131'072) : most_rights(_most_rights) {}

    /// @p _elements that this name could do something with, and that were not read again.
    void add(const QString& _name, const std::set<QString>& _elements);

    bool contains(const QString& _name) const { return names.contains(_name); }

    /// Elements to be read again before this name can be used; forgets it. Nothing: all of them.
    std::optional<std::set<QString>> take(const QString& _name);

    /// This element is read again.
    void renew(const QString& _element);

    /// Every element is read again.
    void clear();

    qsizetype rights() const { return remembered; }

 private:
    const qsizetype most_rights;
    qsizetype remembered = 0;
    QHash<QString, std::optional<std::set<QString>>> names;  ///< nothing: any element
};

}  // namespace database::live

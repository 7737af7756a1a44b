#pragma once

#include <QSet>
#include <QString>

namespace ets {

/// Gives out identifiers, each once. They come from group addresses, so that they are the same at
/// the next import however much was renamed or added.
class identifiers_t {
 public:
    /// "e-1-2-3" for the kind "e" and the address 1/2/3. Where that is taken: with @p _distinction
    /// behind it, and with a number where that is, too.
    QString take(const QString& _kind, quint16 _raw, const QString& _distinction);

    /// "1-2-3", whatever the project's style.
    static QString of_address(quint16 _raw);

 private:
    QSet<QString> taken;
};

}  // namespace ets

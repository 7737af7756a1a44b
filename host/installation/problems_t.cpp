#include "installation/problems_t.h"

#include "database/name_rules.h"

namespace database::installation {

namespace {

/// A key as it stands in a place: without the quotes, but as short and clean as in them.
QString shown(const QString& _key) {
    const QString text = quoted(_key);
    return text.mid(1, text.size() - 2);
}

QString shown_place(const QStringList& _place) {
    QStringList keys;
    for (const QString& key : _place) {
        keys.append(shown(key));
    }
    return keys.join('/');
}

}  // namespace

void problems_t::add(const QStringList& _place, const QString& _sentence) {
    if (++count == 1) {
        first =
            _place.isEmpty() ? _sentence : shown_place(_place) + QStringLiteral(": ") + _sentence;
    }
}

QString problems_t::summary() const {
    return count > 1 ? first + QStringLiteral(" (and %1 more)").arg(count - 1) : first;
}

}  // namespace database::installation

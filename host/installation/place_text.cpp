#include "installation/place_text.h"

#include "database/name_rules.h"

namespace database::installation {

QString place_text(const QStringList& _place) {
    QStringList keys;
    for (const QString& key : _place) {
        keys.append(shown(key));
    }
    return keys.join(QLatin1Char('/'));
}

}  // namespace database::installation

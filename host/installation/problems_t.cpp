#include "installation/problems_t.h"

#include "installation/place_text.h"

namespace database::installation {

void problems_t::add(const QStringList& _place, const QString& _sentence) {
    if (++count == 1) {
        first =
            _place.isEmpty() ? _sentence : place_text(_place) + QStringLiteral(": ") + _sentence;
    }
}

QString problems_t::summary() const {
    return count > 1 ? first + QStringLiteral(" (and %1 more)").arg(count - 1) : first;
}

}  // namespace database::installation

#include "installation/problems_t.h"

#include "installation/place_text.h"

namespace database::installation {

void problems_t::add(const QStringList& _place, const QString& _sentence) {
    if (++count <= most_sentences) {
        sentences.append(_place.isEmpty() ? _sentence
                                          : place_text(_place) + QStringLiteral(": ") + _sentence);
    }
}

QString problems_t::summary() const {
    const QString first = sentences.value(0);
    return count > 1 ? first + QStringLiteral(" (and %1 more)").arg(count - 1) : first;
}

QStringList problems_t::all() const {
    QStringList told = sentences;
    if (count > most_sentences) {
        told.append(QStringLiteral("and %1 more").arg(count - most_sentences));
    }
    return told;
}

}  // namespace database::installation

#include "utility/identifier_text.h"

#include <QRegularExpression>

namespace utility {

QString plain_uuid(QString _uuid) {
    static const QRegularExpression braces(QStringLiteral("[}{]"));
    return _uuid.remove(braces).remove(QLatin1Char('-'));
}

QString number_uuid(QString _uuid) {
    for (int digit = 10; digit <= 15; ++digit) {
        _uuid.replace(QLatin1Char(static_cast<char>('a' + digit - 10)), QString::number(digit));
    }
    return plain_uuid(_uuid);
}

QString installation_uuid(QString _uuid) {
    static const QRegularExpression punctuation(QStringLiteral("[^a-zA-Z\\d\\s]"));
    return _uuid.remove(punctuation);
}

}  // namespace utility

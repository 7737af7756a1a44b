#include "ets/program_object.h"

#include <QStringList>

namespace ets {

QString without_instances(const QString& _ref) {
    QStringList kept;
    bool in_module = false;
    for (const QString& part : _ref.split(u'_')) {
        const bool is_instance =
            part.startsWith(QLatin1String("M-")) || part.startsWith(QLatin1String("MI-"));
        const bool is_again = !kept.isEmpty() && kept.constLast() == part;
        if (!in_module || (!is_instance && !is_again)) {
            kept.append(part);
        }
        in_module = in_module || part.startsWith(QLatin1String("MD-"));
    }
    return kept.join(u'_');
}

QString program_in(const QString& _ref) {
    const QStringList parts = _ref.split(u'_');
    const bool is_named = parts.size() > 2 && parts[0].startsWith(QLatin1String("M-")) &&
                          parts[1].startsWith(QLatin1String("A-"));
    return is_named ? parts[0] + u'_' + parts[1] : QString();
}

QString usual_program(const QString& _hardware) {
    const qsizetype mark = _hardware.indexOf(QLatin1String("_HP-"));
    const QString maker = manufacturer_in(_hardware);
    return mark < 0 || maker.isEmpty() ? QString()
                                       : maker + QStringLiteral("_A-") + _hardware.mid(mark + 4);
}

QString manufacturer_in(const QString& _ref) {
    const QString first = _ref.section(u'_', 0, 0);
    return first.startsWith(QLatin1String("M-")) ? first : QString();
}

}  // namespace ets

#include "ets/draft_t.h"

#include <QStringList>

#include "database/name_rules.h"

namespace ets {

quint16 draft_t::primary() const {
    static const QStringList order{
        QStringLiteral("execute"),  QStringLiteral("level"), QStringLiteral("move"),
        QStringLiteral("position"), QStringLiteral("slat"),  QStringLiteral("stop"),
        QStringLiteral("setpoint"), QStringLiteral("mode"),  QStringLiteral("valve")};
    for (const QString& key : order) {
        if (points.contains(key)) {
            return points[key].primary();
        }
    }
    return points.isEmpty() ? quint16(0) : points.first().primary();
}

QString name_with_room(const QString& _name, const QString& _room) {
    const QString name = database::cleaned_text(_name).simplified();
    const QString room = database::cleaned_text(_room).simplified();
    if (room.isEmpty() || name.contains(room, Qt::CaseInsensitive)) {
        return name;
    }
    return name.isEmpty() ? room : room + QStringLiteral(": ") + name;
}

}  // namespace ets

#include "api/element_text.h"

#include "api/readings_t.h"
#include "database/name_rules.h"

namespace torlan {

QString element_text(const QString& _element, const QJsonObject& _data) {
    const QString name = _data.value(QLatin1String("name")).toString();
    QString text = database::shown(_element) +
                   (name.isEmpty() ? QString() : QStringLiteral("  ") + database::shown(name)) +
                   QLatin1Char('\n');
    const auto values = readings_t::values_in(_data);
    for (auto each = values.begin(); each != values.end(); ++each) {
        text += QStringLiteral("  %1: %2\n")
                    .arg(database::shown(each.key()), database::shown(each.value()));
    }
    return text;
}

QJsonObject element_json(const QString& _element, const QJsonObject& _data) {
    QJsonObject functions;
    const auto values = readings_t::values_in(_data);
    for (auto each = values.begin(); each != values.end(); ++each) {
        functions.insert(each.key(), each.value());
    }
    return {{QStringLiteral("element"), _element},
            {QStringLiteral("name"), _data.value(QLatin1String("name"))},
            {QStringLiteral("type"), _data.value(QLatin1String("type"))},
            {QStringLiteral("functions"), functions}};
}

}  // namespace torlan

#include "drivers/plugins/plugin_driver_api/mqtt/topic_placeholders.h"

namespace interfaces::topics {

namespace {

/// The longest token that stands at @p _position; empty when there is none.
QString token_at(const QString& _template, qsizetype _position,
                 const QHash<QString, QString>& _values) {
    const QStringView rest = QStringView(_template).mid(_position);
    QString found;
    for (auto value = _values.cbegin(); value != _values.cend(); ++value) {
        if (value.key().size() > found.size() && rest.startsWith(value.key())) {
            found = value.key();
        }
    }
    return found;
}

}  // namespace

QString replace_placeholders(const QString& _template, const QHash<QString, QString>& _values) {
    QString topic;
    qsizetype position = 0;
    while (position < _template.size()) {
        const QString token = token_at(_template, position, _values);
        if (token.isEmpty()) {
            topic += _template.at(position++);
        } else {
            topic += _values.value(token);
            position += token.size();
        }
    }
    return topic;
}

}  // namespace interfaces::topics

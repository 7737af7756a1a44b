#include "api/readings_t.h"

#include <utility>

namespace torlan {

readings_t::values_t readings_t::values_in(const QJsonObject& _data) {
    values_t values;
    const QJsonObject functions = _data.value(QLatin1String("functions")).toObject();
    for (auto each = functions.begin(); each != functions.end(); ++each) {
        const QJsonValue value = each.value().toObject().value(QLatin1String("value"));
        values.insert(each.key(), value.toVariant().toString());
    }
    return values;
}

void readings_t::begin_read() {
    is_reading = true;
    newer.clear();
    withdrawn.clear();
}

void readings_t::set(const QString& _element, const QString& _function, const QString& _value,
                     changes_t* _changes) {
    values_t& values = elements[_element];
    const auto known = values.constFind(_function);
    if (known == values.constEnd() || *known != _value) {
        values.insert(_function, _value);
        _changes->append({_element, _function, _value});
    }
}

readings_t::changes_t readings_t::remove(const QString& _element) {
    return elements.remove(_element) ? changes_t{{_element}} : changes_t();
}

readings_t::changes_t readings_t::take_all(const QJsonObject& _data) {
    is_reading = false;
    changes_t changes;
    for (const QString& known : elements.keys()) {
        if (!_data.contains(known) && !newer.contains(known)) {
            changes += remove(known);
        }
    }
    for (auto element = _data.begin(); element != _data.end(); ++element) {
        if (withdrawn.contains(element.key())) {
            continue;
        }
        elements[element.key()];
        const QSet<QString> named = newer.value(element.key());
        const values_t values = values_in(element.value().toObject());
        for (auto each = values.begin(); each != values.end(); ++each) {
            if (!named.contains(each.key())) {
                set(element.key(), each.key(), each.value(), &changes);
            }
        }
    }
    return changes;
}

readings_t::changes_t readings_t::take_state(const QString& _element, const QJsonObject& _data) {
    if (_data.isEmpty()) {
        newer.remove(_element);
        if (is_reading) {
            withdrawn.insert(_element);
        }
        return remove(_element);
    }
    withdrawn.remove(_element);
    changes_t changes;
    const values_t values = values_in(_data);
    for (auto each = values.begin(); each != values.end(); ++each) {
        if (is_reading) {
            newer[_element].insert(each.key());
        }
        set(_element, each.key(), each.value(), &changes);
    }
    return changes;
}

}  // namespace torlan

#include "settings_document_t.h"

#include <QJsonArray>

namespace torlan {

namespace {

template <class Container>
int deepest(const Container& _values);

int depth_of(const QJsonValue& _value) {
    if (_value.isArray()) {
        return deepest(_value.toArray());
    }
    return _value.isObject() ? deepest(_value.toObject()) : 0;
}

template <class Container>
int deepest(const Container& _values) {
    int inner = 0;
    for (const QJsonValue& value : _values) {
        inner = qMax(inner, depth_of(value));
    }
    return inner + 1;
}

/// _object with _value at _keys from _index on; nothing when something is in the way.
std::optional<QJsonObject> changed(QJsonObject _object, const QStringList& _keys, qsizetype _index,
                                   const QJsonValue& _value) {
    const QString& key = _keys.at(_index);
    if (_index + 1 == _keys.size()) {
        _object.insert(key, _value);
        return _object;
    }
    const QJsonValue next = _object.value(key);
    if (!next.isObject() && !next.isUndefined()) {
        return std::nullopt;
    }
    const std::optional<QJsonObject> inner = changed(next.toObject(), _keys, _index + 1, _value);
    if (!inner) {
        return std::nullopt;
    }
    _object.insert(key, *inner);
    return _object;
}

}  // namespace

std::optional<QJsonValue> settings_document_t::get(const QStringList& _keys) const {
    QJsonValue value = root;
    for (const QString& key : _keys) {
        value = value.isObject() ? value.toObject().value(key) : QJsonValue(QJsonValue::Undefined);
        if (value.isUndefined()) {
            return std::nullopt;
        }
    }
    return value;
}

bool settings_document_t::set(const QStringList& _keys, const QJsonValue& _value) {
    if (_keys.isEmpty()) {
        root = _value.isObject() ? _value.toObject() : root;
        return _value.isObject();
    }
    const std::optional<QJsonObject> result = changed(root, _keys, 0, _value);
    root = result.value_or(root);
    return result.has_value();
}

int settings_document_t::depth() const {
    return deepest(root);
}

}  // namespace torlan

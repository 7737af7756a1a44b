// Reading and updating values inside a JSON tree by path.
#include "utility/json_path_step_t.h"
#include "utility/utility_t.h"
#include "utility/utility_t_log.h"

namespace utility {

namespace {

const char* const function = "updateJsonValue";

/// What the step's key leads to: undefined when missing, null inside a scalar.
QJsonValue member(const QJsonValue& _value, const QString& _key) {
    if (_value.isArray()) {
        return _value.toArray().at(_key.toInt());
    }
    if (_value.isObject()) {
        return _value.toObject().value(_key);
    }
    return QJsonValue(QJsonValue::Null);
}

/// Qt asserts on a position outside the array; there is nothing to set then.
void set_element(QJsonArray& _array, int _index, const QJsonValue& _value) {
    if (_index >= 0 && _index < _array.size()) {
        _array.replace(_index, _value);
    }
}

void write_to_array(QJsonValue& _target, int _index, const QJsonValue& _current) {
    QJsonArray array = _target.toArray();
    if (_current.isNull()) {
        log_utility(QStringLiteral("Remove: ") + QString::number(_index), 3, function, 389);
        array.removeAt(_index);
    } else {
        set_element(array, _index, _current);
    }
    _target = array;
}

bool write_to_object(QJsonValue& _target, const QString& _key, const QJsonValue& _current,
                     const QJsonValue& _value) {
    QJsonObject object = _target.toObject();
    if (!object.contains(_key) && _value.isNull()) {
        log_utility(QStringLiteral("No: ") + _key, 3, function, 400);
        return false;
    }
    if (_current.isNull()) {
        log_utility(QStringLiteral("Remove: ") + _key, 3, function, 411);
        object.remove(_key);
    } else if (!_key.isEmpty()) {
        object.insert(_key, _current);
    } else {
        object = _current.toObject();
    }
    _target = object;
    return true;
}

}  // namespace

QJsonValue utility_t::getJsonValue(QJsonValue& value, const QString& path) {
    const json_path_step_t step = json_path_step_t::parse(path);
    QJsonValue current = member(value, step.key);
    if (step.rest.isEmpty()) {
        return current;
    }
    if (current.isArray()) {
        QJsonValue element = current.toArray().at(step.index);
        return getJsonValue(element, step.rest);
    }
    if (current.isObject()) {
        return getJsonValue(current, step.rest);
    }
    return current;
}

QJsonValue utility_t::getJsonObjValue(const QJsonObject& object, const QString& path) {
    QJsonValue root(object);
    return getJsonValue(root, path);
}

bool utility_t::updateJsonValue(QJsonValue& target, const QString& path, const QJsonValue& value) {
    const json_path_step_t step = json_path_step_t::parse(path);
    QJsonValue current = member(target, step.key);
    if (step.rest.isEmpty() || (!current.isArray() && !current.isObject())) {
        current = value;
    } else if (current.isArray()) {
        QJsonArray array = current.toArray();
        QJsonValue element = array.at(step.index);
        // A refusal inside an array element does not stop the write: keep it so.
        updateJsonValue(element, step.rest, value);
        set_element(array, step.index, element);
        current = array;
    } else if (!updateJsonValue(current, step.rest, value)) {
        return false;
    }

    if (target.isArray()) {
        write_to_array(target, step.index, current);
        return true;
    }
    if (target.isObject()) {
        return write_to_object(target, step.key, current, value);
    }
    target = value;
    return true;
}

bool utility_t::updateJsonValue(QJsonDocument& document, const QString& path,
                                const QJsonValue& value) {
    QJsonValue root =
        document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    const bool updated = updateJsonValue(root, path, value);
    if (root.isArray()) {
        document.setArray(root.toArray());
    } else {
        document.setObject(root.toObject());
    }
    return updated;
}

}  // namespace utility

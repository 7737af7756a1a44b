#include "endpoint/state_rules.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace comunication::state_rules {

namespace {

/// Whether @p _other has every member of @p _object.
bool holds_all(const QJsonObject& _other, const QJsonObject& _object) {
    for (auto member = _object.begin(); member != _object.end(); ++member) {
        if (!_other.contains(member.key())) {
            return false;
        }
    }
    return true;
}

QJsonObject data_of(const QByteArray& _payload) {
    return QJsonDocument::fromJson(_payload).object().value(QLatin1String("data")).toObject();
}

}  // namespace

bool gives_way(const QByteArray& _waiting, const QByteArray& _next) {
    if (_next.isEmpty() || _waiting.isEmpty()) {
        return _next.isEmpty();
    }
    if (_next == _waiting) {
        return true;
    }
    const QLatin1String functions("functions");
    const QJsonObject waiting = data_of(_waiting);
    const QJsonObject next = data_of(_next);
    return waiting.value(functions).isObject() && holds_all(next, waiting) &&
           holds_all(next.value(functions).toObject(), waiting.value(functions).toObject());
}

}  // namespace comunication::state_rules

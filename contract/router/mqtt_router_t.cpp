#include "router/mqtt_router_t.h"

#include <algorithm>

namespace mqtt {

mqtt_router_t::mqtt_router_t(QObject* _parent) : QObject(_parent) {}

mqtt_router_t::~mqtt_router_t() = default;

bool mqtt_router_t::route(const QString& _pattern, handler_t _handler, PRIORITY_ROUTE _priority) {
    // The outer \A and \z hold for the very ends; a "$" of the pattern itself would also match
    // before a trailing line feed.
    QRegularExpression expression(QRegularExpression::anchoredPattern(_pattern));
    if (!expression.isValid()) {
        return false;
    }
    expression.optimize();
    entry_t entry{_pattern, expression, std::make_shared<const handler_t>(std::move(_handler)),
                  _priority};
    const base::write_locker_t locker(&lock);
    std::erase_if(routes, [&_pattern](const entry_t& e) { return e.pattern == _pattern; });
    const auto behind = std::find_if(routes.begin(), routes.end(), [_priority](const entry_t& e) {
        return e.priority < _priority;
    });
    routes.insert(behind, std::move(entry));
    return true;
}

void mqtt_router_t::route_remove(const QString& _pattern) {
    const base::write_locker_t locker(&lock);
    std::erase_if(routes, [&_pattern](const entry_t& e) { return e.pattern == _pattern; });
}

void mqtt_router_t::no_route(handler_t _handler) {
    auto next = _handler ? std::make_shared<const handler_t>(std::move(_handler)) : nullptr;
    const base::write_locker_t locker(&lock);
    fallback = std::move(next);
}

QVariant mqtt_router_t::process(const QString& _topic, const QVariant& _payload,
                                const QMap<QString, QVariant>& _headers) const {
    const found_t found = find(_topic);
    if (!found.handler) {
        return {};
    }
    return QVariant::fromValue((*found.handler)(_topic, _payload, found.captures, _headers));
}

mqtt_router_t::found_t mqtt_router_t::find(const QString& _topic) const {
    const base::read_locker_t locker(&lock);
    for (const entry_t& entry : routes) {
        const QRegularExpressionMatch match = entry.expression.match(_topic);
        if (match.hasMatch()) {
            return {entry.handler, match.capturedTexts()};
        }
    }
    return {fallback, {}};
}

}  // namespace mqtt

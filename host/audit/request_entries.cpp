#include "audit/request_entries.h"

#include <algorithm>

#include "audit/operations.h"
#include "base/json_text.h"

namespace audit {

using comunication::exchange_t;

namespace {

const QString& read_path() {
    static const QString path = QStringLiteral("get/elements/objects_list");
    return path;
}

const QString& write_path() {
    static const QString path = QStringLiteral("set/elements/objects_list");
    return path;
}

QStringView path_of(const exchange_t& _exchange) {
    return QStringView(_exchange.topic).mid(_exchange.levels.path);
}

bool is_below(QStringView _path, const QString& _list) {
    return _path.startsWith(_list) &&
           (_path.size() == _list.size() || _path[_list.size()] == QLatin1Char('/'));
}

bool is_write(const exchange_t& _exchange) {
    return is_below(path_of(_exchange), write_path());
}

QString text_of(const QJsonValue& _value) {
    return _value.isString() ? _value.toString() : QString::fromUtf8(base::json_to_text(_value));
}

QJsonValue at(const QJsonObject& _object, const char* _key) {
    return _object.value(QLatin1String(_key));
}

/// Takes what an error says, if it is one.
bool take_error(const QJsonObject& _packet, entry_t* _entry) {
    if (!_packet.contains(QLatin1String("error"))) {
        return false;
    }
    _entry->result = text_of(at(_packet, "error"));
    _entry->detail = at(_packet, "message").toString();
    return true;
}

/// User, uuid and what was asked for.
entry_t begin(const exchange_t& _exchange, qint64 _time) {
    entry_t entry;
    entry.time = _time;
    entry.user = _exchange.levels.user;
    entry.called = _exchange.levels.client;
    const QString uuid = at(_exchange.request, "uuid").toString();
    entry.uuid = uuid.isEmpty() ? at(_exchange.answer, "uuid").toString() : uuid;
    const QStringView path = path_of(_exchange);
    for (const auto& [list, what] :
         {std::pair(read_path(), operation::read), std::pair(write_path(), operation::write)}) {
        if (is_below(path, list)) {
            entry.operation = what;
            entry.element = path.mid(std::min(list.size() + 1, path.size())).toString();
            return entry;
        }
    }
    entry.operation = operation::request;
    entry.element = path.toString();
    return entry;
}

/// Collects the entries of one request.
class writes_t {
 public:
    explicit writes_t(const entry_t& _pattern) : pattern(_pattern) {}

    /// @p _written {"functions": {F: V}}, @p _answer an error or {"functions": {F: result}}
    void add(const QString& _element, const QJsonObject& _written, const QJsonObject& _answer) {
        entry_t entry = pattern;
        entry.element = _element;
        const bool is_error = take_error(_answer, &entry);
        const QJsonObject results = at(_answer, "functions").toObject();
        const QJsonObject functions = at(_written, "functions").toObject();
        for (auto each = functions.begin(); each != functions.end(); ++each) {
            if (found.size() >= most_functions) {
                ++more;
                continue;
            }
            entry.function = each.key();
            entry.value = text_of(each.value());
            entry.result = is_error ? entry.result : text_of(results.value(each.key()));
            found.append(entry);
        }
        if (functions.isEmpty()) {
            found.append(entry);
        }
    }

    QList<entry_t> take() {
        if (more > 0) {
            entry_t rest = pattern;
            rest.count = more;
            rest.since = more > 1 ? rest.time : 0;
            rest.detail = QStringLiteral("more of the same request");
            found.append(rest);
        }
        return found;
    }

 private:
    const entry_t pattern;
    QList<entry_t> found;
    qint64 more = 0;
};

QList<entry_t> write_entries(const exchange_t& _exchange, const entry_t& _pattern) {
    writes_t writes(_pattern);
    const QJsonObject written = at(_exchange.request, "data").toObject();
    const QJsonObject answered = at(_exchange.answer, "data").toObject();
    if (!_pattern.element.isEmpty()) {
        const bool is_error = _exchange.answer.contains(QLatin1String("error"));
        writes.add(_pattern.element, written, is_error ? _exchange.answer : answered);
        return writes.take();
    }
    for (auto each = written.begin(); each != written.end(); ++each) {
        writes.add(each.key(), each->toObject(), answered.value(each.key()).toObject());
    }
    return writes.take();
}

}  // namespace

exchange_t without_answered_data(exchange_t _exchange) {
    if (!is_write(_exchange)) {
        _exchange.request = {{QStringLiteral("uuid"), at(_exchange.request, "uuid")}};
        _exchange.answer.remove(QStringLiteral("data"));
        _exchange.bytes = 0;
    }
    return _exchange;
}

QList<entry_t> request_entries(const exchange_t& _exchange, qint64 _time) {
    entry_t entry = begin(_exchange, _time);
    const bool is_one_write = is_write(_exchange) && !entry.element.isEmpty();
    const bool has_data = !at(_exchange.request, "data").toObject().isEmpty();
    if (!_exchange.is_answered) {
        entry.result = QStringLiteral("no answer");
    } else if (is_write(_exchange) && has_data &&
               (is_one_write || !_exchange.answer.contains(QLatin1String("error")))) {
        return write_entries(_exchange, entry);
    } else if (!take_error(_exchange.answer, &entry)) {
        entry.result = result::ok;
    }
    return {entry};
}

}  // namespace audit

#include "gate/request_head_t.h"

#include <algorithm>

namespace torlan {

namespace {

bool is_name(const QByteArray& _name) {
    return !_name.isEmpty() && std::all_of(_name.begin(), _name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.';
    });
}

bool has_control(const QByteArray& _line) {
    return std::any_of(_line.begin(), _line.end(),
                       [](char c) { return (uchar(c) < 0x20 && c != '\t') || c == 0x7f; });
}

void take(request_head_t* _head, const QByteArray& _name, const QByteArray& _value) {
    if (_name == "host") {
        _head->hosts.append(_value);
    } else if (_name == "origin") {
        _head->origins.append(_value);
    } else if (_name == "content-length") {
        _head->lengths.append(_value);
    } else if (_name == "transfer-encoding") {
        _head->is_coded = true;
    } else if (_name == "expect") {
        _head->expects_go_on = _value.toLower() == "100-continue";
    }
}

}  // namespace

std::optional<request_head_t> request_head_t::parse(const QByteArray& _head) {
    QByteArray text = _head;
    text.replace("\r\n", "\n");
    QList<QByteArray> lines = text.split('\n');
    if (lines.size() < 2 || !lines.takeLast().isEmpty() ||
        std::any_of(lines.begin(), lines.end(), has_control)) {
        return std::nullopt;
    }
    const QList<QByteArray> words = lines.takeFirst().split(' ');
    if (words.size() != 3 || words.at(0).isEmpty() || words.at(1).isEmpty() ||
        (words.at(2) != "HTTP/1.1" && words.at(2) != "HTTP/1.0")) {
        return std::nullopt;
    }
    request_head_t head;
    head.method = words.at(0);
    head.target = words.at(1);
    for (const QByteArray& line : std::as_const(lines)) {
        const qsizetype colon = line.indexOf(':');
        const QByteArray name = line.left(qMax<qsizetype>(colon, 0)).toLower();
        if (!is_name(name)) {
            return std::nullopt;
        }
        take(&head, name, line.mid(colon + 1).trimmed());
    }
    return head;
}

QByteArray request_head_t::without_expectation(const QByteArray& _head) {
    // Whatever the request line begins with, it is no header.
    QByteArray rest = _head.left(_head.indexOf('\n') + 1);
    for (qsizetype start = rest.size(), end = 0; start < _head.size(); start = end) {
        const qsizetype line_end = _head.indexOf('\n', start);
        end = line_end < 0 ? _head.size() : line_end + 1;
        const QByteArray line = _head.sliced(start, end - start);
        if (!line.toLower().startsWith("expect:")) {
            rest += line;
        }
    }
    return rest;
}

QByteArray request_head_t::path() const {
    const qsizetype query = target.indexOf('?');
    return query < 0 ? target : target.left(query);
}

std::optional<qint64> request_head_t::body_bytes() const {
    if (lengths.isEmpty()) {
        return 0;
    }
    const QByteArray& length = lengths.first();
    const bool is_number =
        !length.isEmpty() && length.size() <= 15 &&
        std::all_of(length.begin(), length.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (lengths.size() != 1 || !is_number) {
        return std::nullopt;
    }
    return length.toLongLong();
}

}  // namespace torlan

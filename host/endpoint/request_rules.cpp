#include "endpoint/request_rules.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>

namespace comunication::request_rules {

namespace {

constexpr int longest_uuid = 1'024;
constexpr qsizetype small_payload = 1'024;

/// Whether what is asked for begins so.
bool asks(const request_t& _request, QStringView _words) {
    return _request.levels.is_request() &&
           QStringView(_request.topic).mid(_request.levels.path).startsWith(_words);
}

bool has_long_text(const QJsonValue& _value, std::size_t _longest) {
    if (_value.isString()) {
        const QString text = _value.toString();
        // A character takes one byte at least and three at most.
        return std::size_t(text.size()) > _longest ||
               (std::size_t(text.size()) * 3 > _longest &&
                std::size_t(text.toUtf8().size()) > _longest);
    }
    const auto is_long = [_longest](const QJsonValue& _held) {
        return has_long_text(_held, _longest);
    };
    if (_value.isArray()) {
        const QJsonArray array = _value.toArray();
        return std::any_of(array.begin(), array.end(), is_long);
    }
    const QJsonObject object = _value.toObject();
    return std::any_of(object.begin(), object.end(), is_long);
}

/// Behind the closing quote of the text that begins at @p _begin, or the end.
qsizetype behind_text(const QByteArray& _json, qsizetype _begin) {
    for (qsizetype at = _begin + 1; at < _json.size(); ++at) {
        if (_json[at] == '\\') {
            ++at;
        } else if (_json[at] == '"') {
            return at + 1;
        }
    }
    return _json.size();
}

QString text_of(const QByteArray& _quoted) {
    if (_quoted.size() > longest_uuid + 2) {
        return {};
    }
    return QJsonDocument::fromJson('[' + _quoted + ']').array().at(0).toString();
}

QJsonObject refusal(int _error, const char* _message, const QString& _uuid) {
    QJsonObject answer{{QStringLiteral("error"), _error},
                       {QStringLiteral("message"), QLatin1String(_message)}};
    if (!_uuid.isEmpty()) {
        answer.insert(QStringLiteral("uuid"), _uuid);
    }
    return answer;
}

}  // namespace

bool is_too_large(const QJsonObject& _payload, const request_limits_t& _limits) {
    const QJsonObject filters = _payload.value(QLatin1String("filters")).toObject();
    for (const QJsonValue& list : filters) {
        if (std::size_t(list.toArray().size()) > _limits.filter_entries) {
            return true;
        }
    }
    return has_long_text(_payload.value(QLatin1String("data")), _limits.value_bytes);
}

bool is_small(const request_t& _request) {
    return _request.payload.size() <= small_payload &&
           asks(_request, u"get/elements/objects_list/");
}

QString uuid_of(const QByteArray& _payload) {
    int depth = 0;
    bool is_key = false;
    bool is_uuid = false;
    for (qsizetype at = 0; at < _payload.size(); ++at) {
        switch (_payload[at]) {
            case '{':
            case '[':
                is_key = ++depth == 1;
                break;
            case '}':
            case ']':
                --depth;
                break;
            case ',':
                is_key = depth == 1;
                break;
            case '"': {
                const qsizetype end = behind_text(_payload, at);
                const QByteArray quoted = QByteArray::fromRawData(_payload.data() + at, end - at);
                if (depth == 1 && is_key) {
                    is_uuid = quoted == "\"uuid\"";
                    is_key = false;
                } else if (depth == 1 && is_uuid) {
                    return text_of(quoted);
                }
                at = end - 1;
                break;
            }
            default:
                break;
        }
    }
    return {};
}

QJsonObject malformed(const QString& _uuid) {
    return refusal(400, "Non-compliant payload", _uuid);
}

QJsonObject too_many(const QString& _uuid) {
    return refusal(429, "Too many requests", _uuid);
}

QJsonObject too_large(const QString& _uuid) {
    return refusal(413, "Too large request", _uuid);
}

QJsonObject too_large_an_answer(const QString& _uuid) {
    return refusal(413, "Too large answer", _uuid);
}

}  // namespace comunication::request_rules

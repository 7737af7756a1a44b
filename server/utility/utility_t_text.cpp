// Conversions between JSON, text, booleans and numbers.
#include <QRegularExpression>

#include "utility/utility_t.h"
#include "utility/utility_t_log.h"

namespace utility {

namespace {

QJsonDocument parse(const QString& _text, const char* _function, int _line, bool& _ok) {
    QJsonParseError error;
    QJsonDocument document = QJsonDocument::fromJson(_text.toUtf8(), &error);
    _ok = error.error == QJsonParseError::NoError;
    if (!_ok) {
        log_utility(QStringLiteral("Error parsing file"), 2, _function, _line);
    }
    return document;
}

/// Digits only, the empty text included.
bool is_digits(const QString& _text) {
    static const QRegularExpression digits(
        QRegularExpression::anchoredPattern(QStringLiteral("\\d*")));
    return digits.match(_text).hasMatch();
}

QString number_text(double _number) {
    return QString::number(_number, 'g', 6);
}

int bool_of_text(const QString& _text) {
    if (!is_digits(_text)) {
        return -1;
    }
    if (_text == QLatin1String("1")) {
        return 1;
    }
    return _text == QLatin1String("0") ? 0 : -1;
}

QString rendering(const QJsonValue& _value, QJsonDocument::JsonFormat _format) {
    switch (_value.type()) {
        case QJsonValue::Array:
            return utility_t::QJsonArrayToQString(_value.toArray(), _format);
        case QJsonValue::Object:
            return utility_t::QJsonObjectToQString(_value.toObject(), _format);
        case QJsonValue::Bool:
            return _value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
        case QJsonValue::Double:
            return number_text(_value.toDouble());
        case QJsonValue::Null:
            return QStringLiteral("null");
        case QJsonValue::Undefined:
            return QStringLiteral("udefined");  // readers of the log know this spelling
        case QJsonValue::String:
            break;
    }
    return _value.toString();
}

}  // namespace

QJsonObject utility_t::QStringToQJsonObject(const QString& text) {
    bool ok = false;
    return parse(text, "QStringToQJsonObject", 135, ok).object();
}

QJsonArray utility_t::QStringToQJSonArray(const QString& text) {
    bool ok = false;
    return parse(text, "QStringToQJSonArray", 145, ok).array();
}

QJsonValue utility_t::QStringToQJsonValue(const QString& text) {
    bool ok = false;
    const QJsonDocument document = parse(text, "QStringToQJsonValue", 156, ok);
    if (!ok) {
        return QJsonObject();
    }
    if (document.isArray()) {
        return document.array();
    }
    return document.isObject() ? QJsonValue(document.object()) : QJsonValue(QJsonValue::Null);
}

QString utility_t::QJsonArrayToQString(const QJsonArray& array, QJsonDocument::JsonFormat format) {
    return QString::fromUtf8(QJsonDocument(array).toJson(format));
}

QString utility_t::QJsonObjectToQString(const QJsonObject& object,
                                        QJsonDocument::JsonFormat format) {
    return QString::fromUtf8(QJsonDocument(object).toJson(format));
}

QStringList utility_t::QJsonArrayToQStringList(const QJsonArray& array) {
    return QJsonDocument(array).toVariant().toStringList();
}

int utility_t::QJsonValueToBool(QJsonValue value) {
    if (value.isBool()) {
        return value.toBool() ? 1 : 0;
    }
    if (value.isDouble()) {
        const auto number = static_cast<float>(value.toDouble());
        return number == 0.0F || number == 1.0F ? 1 : -1;
    }
    return value.isString() ? bool_of_text(value.toString()) : -1;
}

QString utility_t::QjsonValueToNumber(QJsonValue value) {
    if (value.isBool()) {
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    }
    if (value.isDouble()) {
        return number_text(value.toDouble());
    }
    const QString text = value.toString();
    return is_digits(text) ? text : QString();
}

void utility_t::printJsonObject(const QJsonObject& object, QJsonDocument::JsonFormat format) {
    log_utility(QJsonObjectToQString(object, format), 6, "printJsonObject", 79);
}

void utility_t::printJson(const QJsonValue& value, QJsonDocument::JsonFormat format) {
    log_utility(QStringLiteral("Value is %1").arg(rendering(value, format)), 4, "printJson", 112);
}

}  // namespace utility

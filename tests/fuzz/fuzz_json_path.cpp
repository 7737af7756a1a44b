// A line with a path, and behind it the JSON value that it leads into.
#include <QJsonDocument>

#include "fuzz/fuzz_input.h"
#include "utility/utility_t.h"

using utility::utility_t;

namespace {

/// Leads to a member of the root, written as it is called.
bool is_member(const QString& _path) {
    return !_path.isEmpty() && !_path.contains('/') && !_path.contains('[');
}

void update(const QJsonDocument& _document, const QString& _path, const QJsonValue& _value) {
    QJsonDocument changed = _document;
    const bool updated = utility_t::updateJsonValue(changed, _path, _value);
    if (_document.isObject() && is_member(_path)) {
        FUZZ_EXPECT(updated == (!_value.isNull() || _document.object().contains(_path)));
        FUZZ_EXPECT(changed.object().contains(_path) == !_value.isNull());
        FUZZ_EXPECT(_value.isNull() || changed.object().value(_path) == _value);
    }
    QJsonValue root =
        _document.isArray() ? QJsonValue(_document.array()) : QJsonValue(_document.object());
    utility_t::updateJsonValue(root, _path, _value);
    FUZZ_EXPECT(!_document.isObject() || root.isObject() || root == _value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    const QByteArray input(reinterpret_cast<const char*>(_data), qsizetype(_size));
    const qsizetype end = input.indexOf('\n');
    const QString path = QString::fromUtf8(input.left(end));
    const QByteArray text = end < 0 ? QByteArray() : input.mid(end + 1);
    const QJsonDocument document = QJsonDocument::fromJson(text);
    const QJsonValue found = utility_t::getJsonObjValue(document.object(), path);
    if (is_member(path)) {
        FUZZ_EXPECT(found == document.object().value(path));
    }
    update(document, path, 42);
    update(document, path, QJsonObject{{"a", 1}});
    update(document, path, QJsonValue::Null);
    for (const QJsonValue& value : document.object()) {
        FUZZ_EXPECT(utility_t::QJsonValueToBool(value) >= -1);
        FUZZ_EXPECT(!value.isObject() || utility_t::QjsonValueToNumber(value).isEmpty());
    }
    utility_t::QJsonArrayToQStringList(document.array());
    return 0;
}

#include "settings_service_t.h"

#include <QJsonDocument>

#include "base/json_text.h"
#include "gate/refusal_t.h"
#include "program/say.h"
#include "settings_file_t.h"

namespace torlan {

namespace {

using answer_t = settings_service_t::answer_t;

answer_t refused(const refusal_t& _refusal) {
    return {_refusal.status, error_packet(_refusal)};
}

// The client needs no path of this machine; whoever runs the server does.
answer_t failed(const QString& _reason) {
    say(stderr, _reason);
    return refused({500, QStringLiteral("The settings file cannot be used")});
}

// Indented, a small hostile document could grow a hundredfold: only small ones are, and only when
// the result fits.
QByteArray stored_text(const QJsonObject& _root) {
    const QByteArray compact = QJsonDocument(_root).toJson(QJsonDocument::Compact);
    if (compact.size() > settings_service_t::max_readable_bytes) {
        return compact;
    }
    const QByteArray readable = QJsonDocument(_root).toJson(QJsonDocument::Indented);
    return readable.size() > settings_file_t::max_bytes ? compact : readable;
}

}  // namespace

answer_t settings_service_t::get(const settings_path_t& _path) const {
    if (_path.refusal) {
        return refused(_path.refusal);
    }
    const base::result_of_t<QJsonObject> root = file->read();
    if (!root.is_ok()) {
        return failed(root.error);
    }
    const std::optional<QJsonValue> value = settings_document_t(root.value).get(_path.keys);
    if (!value) {
        return refused({404, QStringLiteral("No setting has this path")});
    }
    return {200, base::json_to_text(*value)};
}

answer_t settings_service_t::put(const settings_path_t& _path, const QByteArray& _text) const {
    if (_path.refusal) {
        return refused(_path.refusal);
    }
    const std::optional<QJsonValue> value = base::json_from_text(_text);
    if (!value) {
        return refused({400, QStringLiteral("The body is not a JSON value")});
    }
    const base::result_of_t<QJsonObject> root = file->read();
    return root.is_ok() ? store(settings_document_t(root.value), _path, *value)
                        : failed(root.error);
}

answer_t settings_service_t::store(settings_document_t _document, const settings_path_t& _path,
                                   const QJsonValue& _value) const {
    if (!_document.set(_path.keys, _value)) {
        return refused({409, _path.keys.isEmpty()
                                 ? QStringLiteral("The whole document must be an object")
                                 : QStringLiteral("The path leads through a value without keys")});
    }
    if (_document.depth() > max_depth) {
        return refused({400, QStringLiteral("The settings would become too deep")});
    }
    const QByteArray text = stored_text(_document.object());
    if (text.size() > settings_file_t::max_bytes) {
        return refused({413, QStringLiteral("The settings would become too large")});
    }
    const base::result_t written = file->write(text);
    return written.is_ok() ? answer_t{200, base::json_to_text(_value)} : failed(written.error);
}

}  // namespace torlan

// A request to the configuration server: its head up to an empty line, and behind it the body.
#include <QJsonArray>
#include <QJsonDocument>

#include "fuzz/fuzz_input.h"
#include "gate/request_head_t.h"
#include "request_guard_t.h"
#include "settings_document_t.h"
#include "settings_path_t.h"

using namespace torlan;

namespace {

const QJsonObject settings{
    {"static", QJsonObject{{"torlan", QJsonObject{{"paths", QJsonObject{{"logs", "/tmp"}}}}}}},
    {"installation", QJsonObject{{"installation_id", "1"}}}};

void judge_head(const QByteArray& _bytes, const request_head_t& _head) {
    const QByteArray rest = request_head_t::without_expectation(_bytes);
    const auto again = request_head_t::parse(rest);
    FUZZ_EXPECT(again && !again->expects_go_on && again->target == _head.target);
    FUZZ_EXPECT(again->hosts == _head.hosts && again->lengths == _head.lengths);
    if (request_guard_t::judge(_head)) {
        return;
    }
    FUZZ_EXPECT(_head.method == "GET" || _head.method == "PUT");
    FUZZ_EXPECT(_head.hosts.size() == 1 && !_head.is_coded);
    const QByteArray host = _head.hosts.first().toLower();
    FUZZ_EXPECT(host.startsWith("localhost") || host.startsWith("127.") ||
                host.startsWith("[::1]"));
    FUZZ_EXPECT(_head.body_bytes() && *_head.body_bytes() <= request_guard_t::max_body_bytes);
}

void judge_path(const settings_path_t& _path, const QByteArray& _body) {
    for (const QString& key : _path.keys) {
        FUZZ_EXPECT(!key.isEmpty() && key != "." && key != ".." && !key.contains('/'));
        FUZZ_EXPECT(!key.contains(QChar(0)) && !key.contains('\n'));
    }
    FUZZ_EXPECT(_path.keys.size() <= settings_path_t::max_depth);
    const QJsonValue value = QJsonDocument::fromJson('[' + _body + ']').array().at(0);
    settings_document_t document(settings);
    const bool stored = !value.isUndefined() && document.set(_path.keys, value);
    FUZZ_EXPECT(stored ? document.get(_path.keys) == value : document.object() == settings);
    FUZZ_EXPECT(document.depth() > 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    const QByteArray bytes(reinterpret_cast<const char*>(_data), qsizetype(_size));
    const qsizetype end = bytes.indexOf("\r\n\r\n");
    const QByteArray head_bytes = end < 0 ? bytes : bytes.left(end + 2);
    const auto head = request_head_t::parse(head_bytes);
    if (!head) {
        return 0;
    }
    judge_head(head_bytes, *head);
    const settings_path_t path = settings_path_t::parse(head->path());
    if (!path.refusal) {
        judge_path(path, end < 0 ? QByteArray() : bytes.mid(end + 4));
    }
    return 0;
}

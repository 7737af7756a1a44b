#include "output_t.h"

#include <utility>

#include "base/json_text.h"
#include "program/standard_streams.h"

namespace torlan {

namespace {
constexpr qsizetype bytes_at_once = 64 * 1024;
}  // namespace

void output_t::line(const QJsonObject& _object) {
    add(base::json_to_text(_object) + '\n');
}

void output_t::add(const QByteArray& _bytes) {
    waiting += _bytes;
    if (waiting.size() >= bytes_at_once) {
        result = finish();
    }
}

base::result_t output_t::finish() {
    const QByteArray bytes = std::exchange(waiting, {});
    return result.is_ok() ? write_output(bytes) : result;
}

}  // namespace torlan

#pragma once

#include <QByteArray>
#include <optional>

namespace knx {

/// Why a text has no bytes.
enum class refusal_t { no_number, no_whole_number, out_of_range, wrong_form };

/// Bytes, or why there are none.
struct encoded_t {
    QByteArray bytes;
    std::optional<refusal_t> refusal;

    static encoded_t refused(refusal_t _reason) { return {{}, _reason}; }
};

}  // namespace knx

#include "utility/json_path_step_t.h"

namespace utility {

json_path_step_t json_path_step_t::parse(const QString& _path) {
    const qsizetype slash = _path.indexOf(QLatin1Char('/'));
    const qsizetype open = _path.indexOf(QLatin1Char('['));
    const qsizetype close = _path.indexOf(QLatin1Char(']'));
    // Without brackets this is mid(0, -1), the whole path; the slash form relies on it.
    const int index = _path.mid(open + 1, close - open - 1).toInt();

    const bool in_brackets = open >= 0 && (slash < 0 || open < slash);
    if (!in_brackets) {
        return {_path.left(slash), index, slash < 1 ? QString() : _path.mid(slash + 1)};
    }
    QString rest = close < 1 ? QString() : _path.mid(close + 1);
    if (rest.startsWith(QLatin1Char('/'))) {
        rest.remove(0, 1);
    }
    return {_path.left(open), index, rest};
}

}  // namespace utility

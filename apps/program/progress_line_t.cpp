#include "program/progress_line_t.h"

#include <unistd.h>

#include <algorithm>

#include "program/standard_streams.h"

namespace torlan {

progress_line_t::progress_line_t() : is_terminal(::isatty(STDERR_FILENO) != 0) {
    since.start();
}

progress_line_t::~progress_line_t() {
    if (is_shown) {
        write_text(stderr, QStringLiteral("\r\x1b[K"));
    }
}

void progress_line_t::show(const QString& _what) {
    if (!is_terminal) {
        return;
    }
    since.restart();
    is_shown = true;
    QString line = _what;
    const auto is_control = [](QChar _char) { return _char.category() == QChar::Other_Control; };
    std::replace_if(line.begin(), line.end(), is_control, QLatin1Char(' '));
    write_text(stderr, QStringLiteral("\r\x1b[K") + line);
}

void progress_line_t::show_often(const QString& _what) {
    constexpr qint64 pause_ms = 200;
    if (since.hasExpired(pause_ms)) {
        show(_what);
    }
}

}  // namespace torlan

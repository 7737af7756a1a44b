#include "progress_line_t.h"

#include <unistd.h>

#include "database/name_rules.h"
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

void progress_line_t::show(const QString& _what, qint64 _bytes) {
    constexpr qint64 pause_ms = 200;
    if (!is_terminal || !since.hasExpired(pause_ms)) {
        return;
    }
    since.restart();
    is_shown = true;
    write_text(stderr, QStringLiteral("\r\x1b[Kreading %1: %2 MiB")
                           .arg(database::shown(_what), QString::number(_bytes >> 20)));
}

}  // namespace torlan

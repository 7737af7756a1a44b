#include "confirmation.h"

#include <unistd.h>

#include <QFile>

#include "program/standard_streams.h"

namespace torlan {

base::result_t confirm(const call_t& _call, const QString& _what) {
    const bool is_terminal = ::isatty(STDIN_FILENO) != 0 && ::isatty(STDERR_FILENO) != 0;
    if (_call.has("yes") || !is_terminal) {
        return {};
    }
    write_text(stderr, _what + QStringLiteral(" Go on? [y/N] "));
    QFile input;
    const QByteArray answer =
        input.open(stdin, QIODevice::ReadOnly) ? input.readLine(64).trimmed().toLower() : "";
    return answer == "y" || answer == "yes"
               ? base::result_t()
               : base::result_t::failed(QStringLiteral("Nothing was changed."));
}

}  // namespace torlan

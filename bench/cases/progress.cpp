#include "bench/cases/progress.h"

#include <QElapsedTimer>

#include "program/say.h"

namespace bench {

void tell(const QString& _what) {
    static const QElapsedTimer since = []() {
        QElapsedTimer clock;
        clock.start();
        return clock;
    }();
    torlan::say(stderr, QStringLiteral("%1 s: %2").arg(since.elapsed() / 1000, 4).arg(_what));
}

}  // namespace bench

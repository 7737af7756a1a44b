#include "live/refusal_teller_t.h"

#include <utility>

#include "database/name_rules.h"

namespace database::live {

refusal_teller_t::refusal_teller_t(std::chrono::milliseconds _period, QObject* _parent)
    : QObject(_parent), period(this) {
    period.setSingleShot(true);
    period.setInterval(_period);
    connect(&period, &QTimer::timeout, this, &refusal_teller_t::end_period);
}

refusal_teller_t::~refusal_teller_t() {
    end_period();
}

void refusal_teller_t::take(const QString& _id, const QString& _value, const QString& _reason) {
    if (!period.isActive()) {
        period.start();
    }
    if (items.size() == singly || items.contains(_id)) {
        ++untold;
        return;
    }
    items.insert(_id);
    Q_EMIT told(QStringLiteral("Item %1 does not take %2 from a client: %3.")
                    .arg(shown(_id), quoted(_value), _reason));
}

void refusal_teller_t::end_period() {
    items.clear();
    if (const qint64 more = std::exchange(untold, 0); more > 0) {
        Q_EMIT told(QStringLiteral("%1 more values from clients were not taken.").arg(more));
    }
}

}  // namespace database::live

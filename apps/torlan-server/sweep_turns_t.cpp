#include "sweep_turns_t.h"

#include <QSet>

namespace torlan {

sweep_turns_t::sweep_turns_t(std::chrono::milliseconds _pause, QObject* _parent)
    : QObject(_parent), timer(this) {
    timer.setInterval(_pause);
    connect(&timer, &QTimer::timeout, this, &sweep_turns_t::next);
}

sweep_turns_t::~sweep_turns_t() = default;

void sweep_turns_t::know(const QStringList& _users) {
    for (const QString& user : _users) {
        complete = complete && (names.size() < most_names || names.count(user) > 0);
        if (complete) {
            names.insert(user);
        }
    }
}

void sweep_turns_t::begin() {
    // Who waits keeps the place: changes may come faster than everybody's turn does.
    const QSet<QString> in_line(waiting.cbegin(), waiting.cend());
    for (const QString& name : names) {
        if (!in_line.contains(name)) {
            waiting.append(name);
        }
    }
    if (!timer.isActive()) {
        timer.start();
        next();
    }
}

void sweep_turns_t::next() {
    if (waiting.isEmpty()) {
        timer.stop();
        return;
    }
    Q_EMIT turn_of(waiting.takeFirst());
}

}  // namespace torlan

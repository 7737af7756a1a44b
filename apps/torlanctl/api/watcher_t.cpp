#include "api/watcher_t.h"

#include <utility>

#include "api/refusals.h"
#include "base/backoff_t.h"

namespace torlan {

namespace {

const QString list = QStringLiteral("get/elements/objects_list");

}  // namespace

watcher_t::watcher_t(const api_account_t& _account, QStringList _elements, QObject* _parent)
    : QObject(_parent), patience(_account.wait), elements(std::move(_elements)), session(_account) {
    connect(&session, &api_session_t::state, this,
            [this](const QString& _element, const QJsonObject& _data) {
                tell(readings.take_state(_element, _data));
            });
}

void watcher_t::tell(const readings_t::changes_t& _changes) {
    for (const readings_t::change_t& change : _changes) {
        Q_EMIT changed(change);
    }
}

outcome_t watcher_t::follow() {
    if (elements.isEmpty()) {
        return session.follow(QStringLiteral("+"));
    }
    for (const QString& element : elements) {
        if (const outcome_t followed = session.follow(element); followed.status != status_done) {
            return followed;
        }
    }
    return {};
}

outcome_t watcher_t::read_one(const QString& _element, QJsonObject* _data) {
    QJsonObject answer;
    const outcome_t asked =
        session.ask(session.request_topic(list + QLatin1Char('/') + _element), {}, &answer);
    const QStringList errors = refusals(answer, about_t::one_element);
    if (asked.status == status_done && errors.isEmpty() && !session.is_given_up()) {
        _data->insert(_element, answer.value(QLatin1String("data")));
    } else if (!errors.isEmpty()) {
        Q_EMIT noted(QStringLiteral("%1 cannot be read now: %2.")
                         .arg(_element, errors.join(QStringLiteral("; "))));
    }
    return asked;
}

outcome_t watcher_t::read() {
    readings.begin_read();
    QJsonObject data;
    for (const QString& element : elements) {
        if (const outcome_t read = read_one(element, &data); read.status != status_done) {
            return read;
        }
    }
    if (elements.isEmpty()) {
        QJsonObject answer;
        const outcome_t asked = session.ask(session.request_topic(list), {}, &answer);
        const QStringList errors = refusals(answer, about_t::list);
        if (asked.status != status_done || !errors.isEmpty()) {
            return asked.status != status_done
                       ? asked
                       : outcome_t(status_failed, QStringLiteral("The API refuses: %1.")
                                                      .arg(errors.join(QStringLiteral("; "))));
        }
        data = answer.value(QLatin1String("data")).toObject();
    }
    if (!session.is_given_up()) {
        tell(readings.take_all(data));
    }
    return {};
}

outcome_t watcher_t::begin() {
    outcome_t outcome = session.open();
    was_let_in = outcome.status == status_done;
    if (outcome.status == status_done && !session.is_given_up()) {
        outcome = follow();
    }
    return outcome.status == status_done && !session.is_given_up() ? read() : outcome;
}

bool watcher_t::is_over(const outcome_t& _begun) {
    if (_begun.status != status_sign_in) {
        refused_since.invalidate();
        return _begun.status != status_silent;
    }
    // A server that starts again lets nobody in at first, a large one for half a minute.
    if (!refused_since.isValid()) {
        refused_since.start();
    }
    return refused_since.hasExpired(10 * patience.count());
}

void watcher_t::rest() {
    constexpr auto a_while = std::chrono::hours(1);
    while (!session.wait(a_while, [this]() { return !session.is_open(); }) &&
           !session.is_given_up()) {
    }
}

outcome_t watcher_t::run() {
    base::backoff_t pause(std::chrono::milliseconds(250), std::chrono::milliseconds(2000));
    bool is_first = true;
    QString told;
    for (outcome_t begun = begin(); !session.is_given_up(); begun = begin()) {
        bool is_gap = was_let_in && !session.is_open();
        is_first = is_first && !is_gap;
        if (begun.status == status_done) {
            is_first = false;
            told.clear();
            pause.reset();
            refused_since.invalidate();
            rest();
            is_gap = true;
        } else if (is_first || is_over(begun)) {
            return begun;
        }
        const QString why =
            is_gap
                ? QStringLiteral("The connection is gone: %1. Trying again.").arg(session.reason())
                : begun.error;
        if (std::exchange(told, why) != why && !session.is_given_up()) {
            Q_EMIT noted(why);
        }
        session.wait(pause.next(), [] { return false; });
    }
    return {};
}

}  // namespace torlan

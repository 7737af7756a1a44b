#include "house_link_t.h"

#include <utility>

namespace torlan {

namespace {

constexpr std::chrono::milliseconds shortest_pause{100};
constexpr std::chrono::milliseconds longest_pause{2'000};
/// The medium carries about 50 telegrams a second.
constexpr int reports_a_pass = 8;

}  // namespace

house_link_t::house_link_t(house_t* _house, const QString& _url, QObject* _parent)
    : QObject(_parent), house(_house), url(_url), backoff(shortest_pause, longest_pause) {
    retry.setSingleShot(true);
    connect(&retry, &QTimer::timeout, this, &house_link_t::open);
    connect(&clock, &QTimer::timeout, this, &house_link_t::pass);
    open();
}

house_link_t::~house_link_t() = default;

void house_link_t::open() {
    connection = knx::eib_connection_t::open(url);
    if (!connection || !connection->open_group_socket()) {
        lose();
        return;
    }
    backoff.reset();
    notifier = std::make_unique<QSocketNotifier>(connection->descriptor(), QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &house_link_t::read);
    const QList<knx::telegram_t> reports = house->all_reports();
    waiting.assign(reports.begin(), reports.end());
    clock.start(house_t::pass_takes);
    // What came with the answer is in the library already, and no notifier sees it.
    read();
}

void house_link_t::lose() {
    // Called from the notifier's own signal, too.
    if (notifier) {
        notifier->setEnabled(false);
        notifier.release()->deleteLater();
    }
    connection.reset();
    clock.stop();
    retry.start(backoff.next());
}

void house_link_t::read() {
    using state_t = knx::eib_connection_t::state_t;
    while (connection) {
        const state_t state = connection->state();
        if (state == state_t::nothing) {
            return;
        }
        const auto got = state == state_t::telegram ? connection->take() : std::nullopt;
        if (!got) {
            lose();
            return;
        }
        const auto telegram = knx::telegram_from_apdu(got->source, got->destination, got->apdu);
        if (telegram) {
            send(house->take(*telegram));
        }
    }
}

void house_link_t::pass() {
    for (int i = 0; i < reports_a_pass && connection && !waiting.empty(); ++i) {
        if (send_one(waiting.front())) {
            waiting.pop_front();
        }
    }
    if (connection) {
        send(house->pass());
    }
}

void house_link_t::send(const QList<knx::telegram_t>& _telegrams) {
    for (const knx::telegram_t& telegram : _telegrams) {
        if (!send_one(telegram)) {
            return;
        }
    }
}

bool house_link_t::send_one(const knx::telegram_t& _telegram) {
    if (connection && connection->send(_telegram.destination, knx::apdu_of(_telegram))) {
        return true;
    }
    if (connection) {
        lose();
    }
    return false;
}

}  // namespace torlan

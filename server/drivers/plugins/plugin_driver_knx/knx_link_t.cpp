#include "drivers/plugins/plugin_driver_knx/knx_link_t.h"

namespace knx {

knx_link_t::knx_link_t() = default;

knx_link_t::~knx_link_t() = default;

void knx_link_t::open(const QString& _url) {
    notifier.reset();
    connection = eib_connection_t::open(_url);
    if (!connection || !connection->open_group_socket()) {
        lose();
        return;
    }
    notifier = std::make_unique<QSocketNotifier>(connection->descriptor(), QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &knx_link_t::read);
    Q_EMIT opened();
    // What came with the answer is in the library already, and no notifier sees it.
    read();
}

void knx_link_t::send(quint16 _destination, const QByteArray& _apdu) {
    if (!connection) {
        return;
    }
    if (connection->send(group_address_t(_destination), _apdu)) {
        Q_EMIT sent();
    } else {
        lose();
    }
}

void knx_link_t::read() {
    while (connection) {
        const eib_connection_t::state_t state = connection->state();
        if (state == eib_connection_t::state_t::nothing) {
            return;
        }
        const auto telegram =
            state == eib_connection_t::state_t::telegram ? connection->take() : std::nullopt;
        if (!telegram) {
            lose();
            return;
        }
        Q_EMIT received(telegram->source, telegram->destination, telegram->apdu);
    }
}

void knx_link_t::lose() {
    // Called from the notifier's own signal, too.
    if (notifier) {
        notifier->setEnabled(false);
        notifier.release()->deleteLater();
    }
    connection.reset();
    Q_EMIT lost();
}

}  // namespace knx

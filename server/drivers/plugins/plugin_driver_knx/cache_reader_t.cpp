#include "drivers/plugins/plugin_driver_knx/cache_reader_t.h"

#include "knx/knxd/eib_connection_t.h"

namespace knx {

cache_reader_t::cache_reader_t() = default;

cache_reader_t::~cache_reader_t() = default;

void cache_reader_t::read(const QString& _url, const QList<quint16>& _addresses) {
    const auto connection = _addresses.isEmpty() ? nullptr : eib_connection_t::open(_url);
    for (const quint16 address : _addresses) {
        eib_connection_t::received_t telegram;
        const auto cached = connection ? connection->read_cache(group_address_t(address), &telegram)
                                       : eib_connection_t::cached_t::no_cache;
        if (cached == eib_connection_t::cached_t::no_cache) {
            break;
        }
        if (cached == eib_connection_t::cached_t::known) {
            Q_EMIT found(telegram.source, telegram.destination, telegram.apdu);
        }
    }
    Q_EMIT finished();
}

}  // namespace knx

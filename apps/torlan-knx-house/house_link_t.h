#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <deque>

#include "base/backoff_t.h"
#include "house_t.h"
#include "knx/knxd/eib_connection_t.h"

namespace torlan {

/// The house on the bus: connected whenever knxd is there. Calls of knxd's library block this
/// thread; whoever ends the program meanwhile loses nothing.
class house_link_t : public QObject {
    Q_OBJECT

 public:
    house_link_t(house_t* _house, const QString& _url, QObject* _parent = nullptr);
    ~house_link_t() override;

 private:
    void open();
    void lose();
    void read();
    void pass();
    void send(const QList<knx::telegram_t>& _telegrams);
    bool send_one(const knx::telegram_t& _telegram);

    house_t* const house;
    const QString url;
    std::unique_ptr<knx::eib_connection_t> connection;
    std::unique_ptr<QSocketNotifier> notifier;
    base::backoff_t backoff;
    QTimer retry;
    QTimer clock;
    std::deque<knx::telegram_t> waiting;  ///< what is said of all devices, a part at each pass
};

}  // namespace torlan

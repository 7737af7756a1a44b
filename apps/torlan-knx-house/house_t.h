#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "house_device_t.h"
#include "house_points_t.h"

namespace torlan {

/// The devices of a home: telegrams in, telegrams out. It has no clock and no connection.
class house_t {
 public:
    /// Of time, for each pass().
    static constexpr std::chrono::milliseconds pass_takes{200};
    /// Passes between two uses of the wall switch.
    static constexpr int switch_pause = 100;

    explicit house_t(const database::installation::installation_t& _home);

    /// Nothing of the home is on the bus.
    bool is_empty() const { return points.is_empty(); }

    /// What every device says of itself when the bus has come back.
    QList<knx::telegram_t> all_reports() const { return points.all_reports(); }

    /// What the devices answer.
    QList<knx::telegram_t> take(const knx::telegram_t& _telegram);

    /// What happens by itself meanwhile.
    QList<knx::telegram_t> pass();

 private:
    void add_thermostats(const database::installation::installation_t& _home);
    void add_element(const database::installation::element_t& _element);
    void add(std::unique_ptr<house_device_t> _device, const QStringList& _items);
    bool is_free(const QString& _item) const;
    void take_write(const QString& _item, const QByteArray& _data);
    QList<knx::telegram_t> use_switch();

    house_points_t points;
    std::vector<std::unique_ptr<house_device_t>> devices;
    QHash<QString, house_device_t*> owners;  ///< by item
    QString switched;  ///< item of the lamp with the wall switch; perhaps none
    int passes = 0;
};

}  // namespace torlan

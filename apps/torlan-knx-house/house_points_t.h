#pragma once

#include <QHash>
#include <QMap>

#include "installation/installation_t.h"
#include "knx/data_point_type_t.h"
#include "knx/telegram_t.h"

namespace torlan {

/// The items of a home that are on the bus, as their devices have them: what they are, and where
/// that is written, reported and asked.
class house_points_t {
 public:
    explicit house_points_t(const database::installation::installation_t& _home);

    bool is_empty() const { return points.isEmpty(); }
    bool has(const QString& _id) const { return points.contains(_id); }

    /// 0: there is no such item, or its value is no number.
    double number(const QString& _id) const;

    /// The item is @p _value from now on, as near as its type can say it, and that is reported if
    /// it was another one. Ids that are not there are ignored.
    void set(const QString& _id, double _value);
    /// The same of the bytes of a telegram; the report goes out in any case.
    void accept(const QString& _id, const QByteArray& _data);

    /// The number in bytes of the item's type; nothing: they are none of it.
    std::optional<double> number_in(const QString& _id, const QByteArray& _data) const;

    /// Whom a telegram to the address tells what to be.
    QStringList written_at(knx::group_address_t _address) const { return writes.value(_address); }

    /// The answer to a question; nothing: nobody has it.
    std::optional<knx::telegram_t> answer(knx::group_address_t _address) const;

    /// What somebody else sends to make the item @p _value.
    std::optional<knx::telegram_t> command(const QString& _id, double _value) const;

    /// What every device says of itself when the bus has come back.
    QList<knx::telegram_t> all_reports() const;
    /// What has been reported since the last call.
    QList<knx::telegram_t> take_reports();

 private:
    struct point_t {
        const knx::data_point_type_t* type = nullptr;
        std::optional<knx::group_address_t> write;
        std::optional<knx::group_address_t> status;
        QByteArray data;

        /// Who writes where the state is heard knows it already.
        bool is_reported() const { return status && status != write; }
    };

    static point_t point_of(const bus::bus_data_t& _data, const QString& _value);
    static knx::telegram_t telegram(const point_t& _point, knx::group_address_t _address,
                                    knx::command_t _command);
    void report(const point_t& _point);

    QMap<QString, point_t> points;
    QHash<knx::group_address_t, QStringList> writes;
    QHash<knx::group_address_t, QString> answers;
    QList<knx::telegram_t> reports;
};

}  // namespace torlan

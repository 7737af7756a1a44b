#include "house_points_t.h"

#include <utility>

#include "knx/data_point_types.h"
#include "knx/data_point_value.h"

namespace torlan {

using knx::group_address_t;
using knx::telegram_t;

namespace {

QByteArray bytes_of(const knx::data_point_type_t& _type, double _value) {
    return knx::encode(_type, QString::number(_value, 'f', 2)).value;
}

}  // namespace

house_points_t::house_points_t(const database::installation::installation_t& _home) {
    for (auto it = _home.item_buses.begin(); it != _home.item_buses.end(); ++it) {
        const point_t point = point_of(it.value(), _home.items.value(it.key()).value);
        if (point.type == nullptr) {
            continue;  // nobody can play what nobody can read
        }
        points.insert(it.key(), point);
        if (point.write) {
            writes[*point.write].append(it.key());
        }
        for (const auto& address : {point.status, point.write}) {
            if (address && !answers.contains(*address)) {
                answers.insert(*address, it.key());
            }
        }
    }
}

house_points_t::point_t house_points_t::point_of(const bus::bus_data_t& _data,
                                                 const QString& _value) {
    point_t point;
    point.type = knx::find_data_point_type(_data.dpt);
    if (point.type == nullptr) {
        return point;
    }
    const QStringList heard = _data.heard();
    point.write = group_address_t::from_text(_data.write);
    point.status = heard.isEmpty() ? std::nullopt : group_address_t::from_text(heard.constFirst());
    const auto bytes = knx::encode(*point.type, _value);
    point.data = bytes.is_ok() ? bytes.value : QByteArray(point.type->bytes(), '\0');
    return point;
}

double house_points_t::number(const QString& _id) const {
    return number_in(_id, points.value(_id).data).value_or(0);
}

std::optional<double> house_points_t::number_in(const QString& _id, const QByteArray& _data) const {
    const knx::data_point_type_t* const type = points.value(_id).type;
    if (type == nullptr) {
        return std::nullopt;
    }
    const auto text = knx::decode(*type, _data);
    return text.is_ok() ? std::optional(text.value.toDouble()) : std::nullopt;
}

void house_points_t::set(const QString& _id, double _value) {
    const auto found = points.find(_id);
    if (found == points.end()) {
        return;
    }
    const QByteArray bytes = bytes_of(*found->type, _value);
    if (!bytes.isEmpty() && bytes != found->data) {
        found->data = bytes;
        report(*found);
    }
}

void house_points_t::accept(const QString& _id, const QByteArray& _data) {
    const auto found = points.find(_id);
    if (found == points.end() || !knx::decode(*found->type, _data).is_ok()) {
        return;
    }
    found->data = _data;
    report(*found);
}

void house_points_t::report(const point_t& _point) {
    if (_point.is_reported()) {
        reports.append(telegram(_point, *_point.status, knx::command_t::write));
    }
}

telegram_t house_points_t::telegram(const point_t& _point, group_address_t _address,
                                    knx::command_t _command) {
    return {0, _address, _command, _point.data, _point.type->is_short()};
}

std::optional<telegram_t> house_points_t::answer(group_address_t _address) const {
    const auto point = points.constFind(answers.value(_address));
    return point == points.constEnd()
               ? std::nullopt
               : std::optional(telegram(*point, _address, knx::command_t::response));
}

std::optional<telegram_t> house_points_t::command(const QString& _id, double _value) const {
    const auto found = points.constFind(_id);
    if (found == points.constEnd() || !found->write) {
        return std::nullopt;
    }
    point_t wanted = *found;
    wanted.data = bytes_of(*wanted.type, _value);
    return wanted.data.isEmpty()
               ? std::nullopt
               : std::optional(telegram(wanted, *wanted.write, knx::command_t::write));
}

QList<telegram_t> house_points_t::all_reports() const {
    QList<telegram_t> all;
    for (const point_t& point : points) {
        if (point.is_reported()) {
            all.append(telegram(point, *point.status, knx::command_t::write));
        }
    }
    return all;
}

QList<telegram_t> house_points_t::take_reports() {
    return std::exchange(reports, {});
}

}  // namespace torlan

#include "installation/bus_data.h"

#include <QJsonArray>
#include <algorithm>

#include "database/name_rules.h"
#include "knx/data_point_types.h"
#include "knx/group_address_t.h"

namespace database::installation {

namespace {

const QString usual_scene_type = QStringLiteral("17.001");
constexpr qsizetype most_addresses = 64;
constexpr int last_scene = 64;

class reading_t {
 public:
    reading_t(const QJsonObject& _object, bus_role_t _role) : object(_object), role(_role) {}

    read_bus_data_t read() {
        check_keys();
        read_type();
        read_write();
        if (role == bus_role_t::item) {
            read_status();
            result.data.read = flag(QStringLiteral("read"), !result.data.status.isEmpty());
            result.data.answer = flag(QStringLiteral("answer"), false);
        } else {
            read_scene();
        }
        return result;
    }

 private:
    /// The first thing that is wrong counts.
    void fail(const QStringList& _place, const QString& _error) {
        if (result.is_ok()) {
            result.place = _place;
            result.error = _error;
        }
    }

    void check_keys() {
        using keys_t = QList<QLatin1String>;
        static const keys_t of_items{QLatin1String("dpt"), QLatin1String("write"),
                                     QLatin1String("status"), QLatin1String("read"),
                                     QLatin1String("answer")};
        static const keys_t of_scenarios{QLatin1String("dpt"), QLatin1String("write"),
                                         QLatin1String("scene")};
        const keys_t& known = role == bus_role_t::item ? of_items : of_scenarios;
        for (const QString& key : object.keys()) {
            if (std::find(known.begin(), known.end(), key) == known.end()) {
                fail({key}, QStringLiteral("is not known"));
            }
        }
    }

    void read_type() {
        const QJsonValue dpt = object[QLatin1String("dpt")];
        const bool is_scene = role == bus_role_t::scenario;
        result.data.dpt = dpt.isUndefined() && is_scene ? usual_scene_type : dpt.toString();
        if (is_scene && result.data.dpt != usual_scene_type &&
            result.data.dpt != QLatin1String("18.001")) {
            fail({QStringLiteral("dpt")}, QStringLiteral("must be \"17.001\" or \"18.001\""));
        }
        if (!knx::is_data_point_type_id(result.data.dpt)) {
            fail({QStringLiteral("dpt")},
                 QStringLiteral("must be a data point type such as \"9.001\" or \"9\""));
        }
    }

    QString address(const QJsonValue& _json, const QStringList& _place) {
        if (!knx::group_address_t::from_text(_json.toString())) {
            fail(_place, QStringLiteral("must be a group address such as \"1/2/3\", \"1/515\" or "
                                        "\"2563\""));
        }
        return _json.toString();
    }

    void read_write() {
        const QJsonValue write = object[QLatin1String("write")];
        if (!write.isUndefined()) {
            result.data.write = address(write, {QStringLiteral("write")});
        } else if (role == bus_role_t::scenario || !object.contains(QLatin1String("status"))) {
            fail({QStringLiteral("write")}, QStringLiteral("is missing"));
        }
    }

    void read_status() {
        const QJsonValue status = object[QLatin1String("status")];
        const QJsonArray addresses = status.toArray();
        if (!status.isUndefined() && (addresses.isEmpty() || addresses.size() > most_addresses)) {
            fail({QStringLiteral("status")},
                 QStringLiteral("must be a list of 1 to %1 group addresses").arg(most_addresses));
            return;
        }
        for (qsizetype i = 0; i < addresses.size(); ++i) {
            result.data.status.append(
                address(addresses[i], {QStringLiteral("status"), QString::number(i)}));
        }
    }

    bool flag(const QString& _key, bool _usual) {
        const QJsonValue value = object[_key];
        if (!value.isUndefined() && !value.isBool()) {
            fail({_key}, QStringLiteral("must be true or false"));
        }
        return value.toBool(_usual);
    }

    void read_scene() {
        const QJsonValue scene = object[QLatin1String("scene")];
        result.data.scene = scene.toInt();
        if (result.data.scene < 1 || result.data.scene > last_scene) {
            fail({QStringLiteral("scene")},
                 QStringLiteral("must be a whole number from 1 to %1").arg(last_scene));
        }
    }

    const QJsonObject object;
    const bus_role_t role;
    read_bus_data_t result;
};

}  // namespace

read_bus_data_t read_bus_data(const QJsonValue& _json, bus_role_t _role) {
    return _json.isObject() ? reading_t(_json.toObject(), _role).read()
                            : read_bus_data_t{.error = QStringLiteral("must be an object")};
}

QJsonObject write_bus_data(const bus::bus_data_t& _data, bus_role_t _role) {
    QJsonObject object;
    if (_role == bus_role_t::item || _data.dpt != usual_scene_type) {
        object.insert(QStringLiteral("dpt"), _data.dpt);
    }
    if (!_data.write.isEmpty()) {
        object.insert(QStringLiteral("write"), _data.write);
    }
    if (_role == bus_role_t::scenario) {
        object.insert(QStringLiteral("scene"), _data.scene);
        return object;
    }
    if (!_data.status.isEmpty()) {
        object.insert(QStringLiteral("status"), QJsonArray::fromStringList(_data.status));
    }
    if (_data.read == _data.status.isEmpty()) {
        object.insert(QStringLiteral("read"), _data.read);
    }
    if (_data.answer) {
        object.insert(QStringLiteral("answer"), true);
    }
    return object;
}

}  // namespace database::installation

#include "installation/document_reader.h"

#include "accounts/broker_hash.h"
#include "database/permission.h"
#include "installation/bus_data.h"
#include "installation/installation_rules.h"
#include "installation/json_text.h"
#include "installation/password_error.h"
#include "installation/schema_check.h"

namespace database::installation {

using ::base::result_t;

namespace {

/// Builds one entry for each key of a section; the shape has been checked.
template <typename value_t, typename make_t>
QMap<QString, value_t> read_section(const QJsonValue& _section, make_t _make) {
    QMap<QString, value_t> entries;
    const QJsonObject object = _section.toObject();
    for (auto it = object.begin(); it != object.end(); ++it) {
        entries.insert(it.key(), _make(it.value()));
    }
    return entries;
}

QString text(const QJsonValue& _value) {
    return _value.toString();
}

std::optional<double> limit(const QJsonValue& _value) {
    return _value.isDouble() ? std::optional(_value.toDouble()) : std::nullopt;
}

item_t item(const QJsonValue& _value) {
    return {_value[QLatin1String("value")].toString(QStringLiteral("")),
            {_value[QLatin1String("writable")].toBool(true), limit(_value[QLatin1String("min")]),
             limit(_value[QLatin1String("max")]), limit(_value[QLatin1String("step")])}};
}

thermostat_t thermostat(const QJsonValue& _value) {
    return {read_section<QString>(_value[QLatin1String("ids")], text),
            text(_value[QLatin1String("id_actual")]),
            text(_value[QLatin1String("id_windows_contact")])};
}

element_t element(const QJsonValue& _value) {
    return {text(_value[QLatin1String("name")]),
            _value[QLatin1String("type")].toInt(),
            _value[QLatin1String("flags")].toInt(),
            read_section<QString>(_value[QLatin1String("functions")], text),
            text(_value[QLatin1String("scenario")]),
            text(_value[QLatin1String("thermostat")])};
}

QMap<QString, int> grants(const QJsonValue& _value) {
    return read_section<int>(_value, [](const QJsonValue& _word) {
        return permission::bits(_word.toString()).value_or(0);
    });
}

/// "knx" of the entries that have it; what is wrong with it is told by check_bus_data().
QMap<QString, bus::bus_data_t> buses(const QJsonValue& _section, bus_role_t _role) {
    QMap<QString, bus::bus_data_t> found;
    const QJsonObject object = _section.toObject();
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QJsonValue knx = it.value()[QLatin1String("knx")];
        if (!knx.isUndefined()) {
            found.insert(it.key(), read_bus_data(knx, _role).data);
        }
    }
    return found;
}

/// Users come without their hashes: those are made when everything else is known to be right.
installation_t unsecured(const QJsonObject& _document) {
    installation_t whole;
    whole.topic = text(_document[QLatin1String("topic")]);
    whole.items = read_section<item_t>(_document[QLatin1String("items")], item);
    whole.scenarios = read_section<bool>(
        _document[QLatin1String("scenarios")],
        [](const QJsonValue& _scenario) { return _scenario[QLatin1String("execution")].toBool(); });
    whole.item_buses = buses(_document[QLatin1String("items")], bus_role_t::item);
    whole.scenario_buses = buses(_document[QLatin1String("scenarios")], bus_role_t::scenario);
    whole.thermostats =
        read_section<thermostat_t>(_document[QLatin1String("thermostats")], thermostat);
    whole.elements = read_section<element_t>(_document[QLatin1String("elements")], element);
    whole.users =
        read_section<user_t>(_document[QLatin1String("users")], [](const QJsonValue& _user) {
            return user_t{text(_user[QLatin1String("username")]), {}};
        });
    whole.permissions =
        read_section<QMap<QString, int>>(_document[QLatin1String("permissions")], grants);
    return whole;
}

void check_bus_data(const QString& _section, const QJsonObject& _document, bus_role_t _role,
                    problems_t& _problems) {
    const QJsonObject object = _document[_section].toObject();
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QJsonValue knx = it.value()[QLatin1String("knx")];
        const read_bus_data_t read =
            knx.isUndefined() ? read_bus_data_t() : read_bus_data(knx, _role);
        if (!read.is_ok()) {
            _problems.add(QStringList{_section, it.key(), QStringLiteral("knx")} + read.place,
                          read.error);
        }
    }
}

void check_secret(const QString& _id, const QJsonValue& _user, problems_t& _problems) {
    const QStringList place{QStringLiteral("users"), _id};
    const bool clear = !_user[QLatin1String("password")].isUndefined();
    const bool hashed = !_user[QLatin1String("password_hash")].isUndefined();
    if (clear && hashed) {
        _problems.add(place, QStringLiteral("takes either \"password\" or \"password_hash\""));
    } else if (hashed && !accounts::is_password_hash(text(_user[QLatin1String("password_hash")]))) {
        _problems.add(place + QStringList{QStringLiteral("password_hash")},
                      QStringLiteral("must be $7$iterations$salt$hash"));
    } else if (clear && !password_error(text(_user[QLatin1String("password")])).isEmpty()) {
        _problems.add(place + QStringList{QStringLiteral("password")},
                      password_error(text(_user[QLatin1String("password")])));
    }
}

problems_t check_document(const QJsonObject& _document, const installation_t& _whole) {
    problems_t problems = check_rules(_whole);
    const QJsonObject users = _document[QLatin1String("users")].toObject();
    for (auto it = users.begin(); it != users.end(); ++it) {
        check_secret(it.key(), it.value(), problems);
    }
    check_bus_data(QStringLiteral("items"), _document, bus_role_t::item, problems);
    check_bus_data(QStringLiteral("scenarios"), _document, bus_role_t::scenario, problems);
    return problems;
}

QString hash_of(const QString& _password, const QString& _username, const user_t& _known) {
    return _known.username == _username &&
                   accounts::verify_password(_password, _known.password_hash)
               ? _known.password_hash
               : accounts::make_password_hash(_password);
}

void secure(installation_t& _whole, const QJsonValue& _users, const QMap<QString, user_t>& _known) {
    for (auto it = _whole.users.begin(); it != _whole.users.end(); ++it) {
        const QJsonValue user = _users[it.key()];
        const QString password = text(user[QLatin1String("password")]);
        it->password_hash = password.isEmpty()
                                ? text(user[QLatin1String("password_hash")])
                                : hash_of(password, it->username, _known.value(it.key()));
    }
}

/// A denial is a grant that is not there.
void drop_denials(installation_t& _whole) {
    for (auto& of_user : _whole.permissions) {
        of_user.removeIf([](const auto& _grant) { return _grant.value() == 0; });
    }
    _whole.permissions.removeIf([](const auto& _user) { return _user.value().isEmpty(); });
}

result_t refused(const QString& _name, const QString& _sentence) {
    return result_t::failed(_name + QStringLiteral(": ") + _sentence);
}

/// A document that is known to be JSON, and what it says, without its secrets.
struct checked_t {
    installation_t whole{};
    problems_t problems{};
};

checked_t check(const QJsonObject& _document) {
    checked_t checked{{}, check_shape(_document)};
    if (checked.problems.is_empty()) {
        checked.whole = unsecured(_document);
        checked.problems = check_document(_document, checked.whole);
    }
    return checked;
}

}  // namespace

QStringList document_problems(const QByteArray& _bytes) {
    const ::base::result_of_t<QJsonObject> json = parse_json(_bytes);
    return json.is_ok() ? check(json.value).problems.all() : QStringList{json.error};
}

::base::result_of_t<installation_t> read_document(const QByteArray& _bytes, const QString& _name,
                                                  const QMap<QString, user_t>& _known) {
    const ::base::result_of_t<QJsonObject> json = parse_json(_bytes);
    if (!json.is_ok()) {
        return refused(_name, json.error);
    }
    checked_t checked = check(json.value);
    if (!checked.problems.is_empty()) {
        return refused(_name, checked.problems.summary());
    }
    secure(checked.whole, json.value[QLatin1String("users")], _known);
    drop_denials(checked.whole);
    return checked.whole;
}

}  // namespace database::installation

#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

namespace kit {

/// The home that tests are about, as an installation document: two users, and one element of each
/// kind. A test that needs more changes it where it can be read, see with().
///
/// | element | type | functions                                       | alice      | bob   |
/// | e-lamp  | 1    | execute -> i-lamp, dim -> i-dim                 | read-write | read  |
/// | e-night | 8    | execute -> s-night                              | read-write | none  |
/// | e-therm | 17   | thermo/setpoint -> i-set, thermo/id_actual and  | read       | write |
/// |         |      | id_win -> i-win                                 |            |       |
///
/// The hashes are those of password_of(), with as few turns as a hash may have.
inline QByteArray small_home_text() {
    return R"({
  "topic": "installation/0001",
  "items": {
    "i-lamp": { "value": "0" },
    "i-dim": { "value": "40" },
    "i-set": { "value": "20.5" },
    "i-temp": { "value": "21" },
    "i-win": { "value": "0" }
  },
  "scenarios": { "s-night": { "execution": false } },
  "thermostats": {
    "t-living": { "ids": { "setpoint": "i-set" }, "id_actual": "i-temp", "id_windows_contact": "i-win" }
  },
  "elements": {
    "e-lamp": {
      "name": "Kitchen lamp", "type": 1, "flags": 0, "functions": { "execute": "i-lamp", "dim": "i-dim" }
    },
    "e-night": { "name": "Good night", "type": 8, "flags": 0, "scenario": "s-night" },
    "e-therm": { "name": "Living room", "type": 17, "flags": 0, "thermostat": "t-living" }
  },
  "users": {
    "u-alice": {
      "username": "alice",
      "password_hash": "$7$10$c21hbGwgaG9tZSBh$GMoX1+jp11QRMXy5IUqumGIdIXzA4uKiFXyQ6eg7CZHns9P9QmK76PWRcGcu32/PtG9Bb2OuGv3yvN4npSp+2Q=="
    },
    "u-bob": {
      "username": "bob",
      "password_hash": "$7$10$c21hbGwgaG9tZSBi$8AeU4mX14Dc/BVTmdce4+7TG10XHOb9RxiUm8DnPhMeVkbwsTgf8CSyPMZUGEW6R/WYVq2LHp8v3CxVKIwCHgQ=="
    }
  },
  "permissions": {
    "u-alice": { "e-lamp": "readwrite", "e-night": "readwrite", "e-therm": "read" },
    "u-bob": { "e-lamp": "read", "e-therm": "write" }
  }
})";
}

inline QJsonObject small_home() {
    return QJsonDocument::fromJson(small_home_text()).object();
}

/// @p _document with another value at a path such as "elements/e-lamp/name"; what is missing on the
/// way is made, an undefined value takes away.
inline QJsonObject with(QJsonObject _document, const QString& _path, const QJsonValue& _value) {
    const QString key = _path.section(u'/', 0, 0);
    const QString rest = _path.section(u'/', 1);
    _document.insert(key, rest.isEmpty() ? _value : with(_document[key].toObject(), rest, _value));
    return _document;
}

}  // namespace kit

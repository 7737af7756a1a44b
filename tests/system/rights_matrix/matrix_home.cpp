#include "system/rights_matrix/matrix_home.h"

#include <QFile>
#include <QJsonDocument>

#include "kit/password_of.h"
#include "system/rights_matrix/element_t.h"

namespace matrix {

namespace {

constexpr int storm_lamps = 65;

QString storm_lamp(int _index) {
    return QStringLiteral("e-storm-%1").arg(_index);
}

QJsonObject lamp(const QString& _item) {
    return {{"name", "Lamp"},
            {"type", 1},
            {"flags", 0},
            {"functions", QJsonObject{{"execute", _item}}}};
}

QJsonObject plain_items(const QJsonObject& _items) {
    QJsonObject plain;
    for (auto each = _items.begin(); each != _items.end(); ++each) {
        plain.insert(each.key(), QJsonObject{{"value", each->toObject().value("value")}});
    }
    return plain;
}

QJsonObject grants(const char* _word, bool _storm) {
    QJsonObject made;
    for (const element_t& element : elements()) {
        made.insert(QString::fromLatin1(element.id), _word);
    }
    for (int index = 0; _storm && index < storm_lamps; ++index) {
        made.insert(storm_lamp(index), _word);
    }
    return made;
}

void add_lamps(QJsonObject* _items, QJsonObject* _elements) {
    for (const char* const id : {fence_lamp, will_lamp}) {
        const QString item = QStringLiteral("i-of-") + QLatin1String(id);
        _items->insert(item, QJsonObject{{"value", "0"}});
        _elements->insert(QLatin1String(id), lamp(item));
    }
    for (int index = 0; index < storm_lamps; ++index) {
        const QString item = QStringLiteral("i-storm-%1").arg(index);
        _items->insert(item, QJsonObject{{"value", "0"}});
        _elements->insert(storm_lamp(index), lamp(item));
    }
}

class people_t {
 public:
    people_t() {
        for (const right_t right : {right_t::readwrite, right_t::read, right_t::write,
                                    right_t::deny, right_t::unlisted, right_t::removed}) {
            const bool is_listed = right < right_t::unlisted;
            const char* const word = is_listed ? name_of(right) : "readwrite";
            add(user_with(right), right == right_t::unlisted ? QJsonObject() : grants(word, false));
        }
        for (int change = 0; change < change_count; ++change) {
            add(victim_of(change_t(change), false), grants("readwrite", false));
            add(victim_of(change_t(change), true), grants("readwrite", true));
        }
        QJsonObject everything = grants("readwrite", true);
        everything.insert(fence_lamp, "readwrite");
        everything.insert(will_lamp, "readwrite");
        add(warden(), everything);
    }

    QJsonObject users;
    QJsonObject permissions;

 private:
    void add(const QString& _name, const QJsonObject& _grants) {
        users.insert("u-" + _name,
                     QJsonObject{{"username", _name}, {"password", kit::password_of(_name)}});
        permissions.insert("u-" + _name, _grants);
    }
};

}  // namespace

QString user_with(right_t _right) {
    return QStringLiteral("has-") + QLatin1String(name_of(_right));
}

QString victim_of(change_t _change, bool _storm) {
    return QLatin1String(name_of(_change)) + QLatin1String(_storm ? "-in-storm" : "-in-quiet");
}

QJsonObject matrix_home(const QString& _sample_file) {
    QFile file(_sample_file);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("%s cannot be read", qPrintable(_sample_file));
    }
    QJsonObject home = QJsonDocument::fromJson(file.readAll()).object();
    QJsonObject items = plain_items(home.value("items").toObject());
    QJsonObject chosen;
    for (const element_t& element : elements()) {
        const QString id = QString::fromLatin1(element.id);
        chosen.insert(id, home.value("elements").toObject().value(id));
    }
    add_lamps(&items, &chosen);
    const people_t people;
    home.insert("items", items);
    home.insert("elements", chosen);
    home.insert("users", people.users);
    home.insert("permissions", people.permissions);
    return home;
}

}  // namespace matrix

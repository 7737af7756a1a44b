#include "installation/installation_rules.h"

#include "database/element_type.h"
#include "database/name_rules.h"
#include "installation/item_limits.h"

namespace database::installation {

namespace {

class rules_t {
 public:
    explicit rules_t(const installation_t& _installation) : whole(_installation) {}

    problems_t check() {
        if (!whole.topic.isEmpty()) {
            demand(topic_error(whole.topic), {QStringLiteral("topic")});
        }
        check_ids(QStringLiteral("items"), whole.items);
        check_ids(QStringLiteral("scenarios"), whole.scenarios);
        check_ids(QStringLiteral("thermostats"), whole.thermostats);
        check_ids(QStringLiteral("elements"), whole.elements);
        check_ids(QStringLiteral("users"), whole.users);
        check_items();
        check_thermostats();
        check_elements();
        check_users();
        check_permissions();
        return problems;
    }

 private:
    void demand(const QString& _error, const QStringList& _place) {
        if (!_error.isEmpty()) {
            problems.add(_place, _error);
        }
    }

    template <typename value_t>
    void check_ids(const QString& _section, const QMap<QString, value_t>& _entries) {
        for (auto it = _entries.keyBegin(); it != _entries.keyEnd(); ++it) {
            const QString error = identifier_error(*it);
            demand(error.isEmpty() ? error : QStringLiteral("the identifier ") + error,
                   {_section, *it});
        }
    }

    template <typename value_t>
    void check_known(const QString& _what, const QString& _id, const QMap<QString, value_t>& _known,
                     const QStringList& _place) {
        if (!_known.contains(_id)) {
            problems.add(
                _place, QStringLiteral("there is no ") + _what + QStringLiteral(" ") + quoted(_id));
        }
    }

    /// An empty id means: not connected.
    void check_item_or_empty(const QString& _id, const QStringList& _place) {
        if (!_id.isEmpty()) {
            check_known(QStringLiteral("item"), _id, whole.items, _place);
        }
    }

    void check_key(const QString& _key, const QStringList& _place) {
        demand(_key.isEmpty() ? QStringLiteral("a name must not be empty") : plain_text_error(_key),
               _place);
    }

    void check_items() {
        for (auto it = whole.items.begin(); it != whole.items.end(); ++it) {
            const QStringList place{QStringLiteral("items"), it.key()};
            demand(value_error(it->value), place + QStringList{QStringLiteral("value")});
            demand(limits_error(it->limits), place);
        }
    }

    void check_thermostats() {
        for (auto it = whole.thermostats.begin(); it != whole.thermostats.end(); ++it) {
            const QStringList place{QStringLiteral("thermostats"), it.key()};
            check_connections(it->ids, place + QStringList{QStringLiteral("ids")});
            check_item_or_empty(it->id_actual, place + QStringList{QStringLiteral("id_actual")});
            check_item_or_empty(it->id_windows_contact,
                                place + QStringList{QStringLiteral("id_windows_contact")});
        }
    }

    void check_elements() {
        for (auto it = whole.elements.begin(); it != whole.elements.end(); ++it) {
            const QStringList place{QStringLiteral("elements"), it.key()};
            demand(plain_text_error(it->name), place + QStringList{QStringLiteral("name")});
            check_connections(it->functions, place + QStringList{QStringLiteral("functions")});
            check_target(QStringLiteral("scenario"), it->scenario,
                         it->type == element_type::scenario, whole.scenarios, place);
            check_target(QStringLiteral("thermostat"), it->thermostat,
                         it->type == element_type::thermostat, whole.thermostats, place);
        }
    }

    /// Function names or thermostat keys; a null id means: not connected.
    void check_connections(const QMap<QString, QString>& _ids, const QStringList& _place) {
        for (auto it = _ids.begin(); it != _ids.end(); ++it) {
            check_key(it.key(), _place + QStringList{it.key()});
            if (!it->isNull()) {
                check_known(QStringLiteral("item"), it.value(), whole.items,
                            _place + QStringList{it.key()});
            }
        }
    }

    /// A null id: the document does not say; an empty one: none.
    template <typename value_t>
    void check_target(const QString& _key, const QString& _id, bool _needed,
                      const QMap<QString, value_t>& _known, const QStringList& _place) {
        if (!_id.isEmpty()) {
            check_known(_key, _id, _known, _place + QStringList{_key});
        } else if (_needed && _id.isNull()) {
            problems.add(_place, QStringLiteral("an element of this type needs a ") + quoted(_key));
        }
    }

    void check_users() {
        QMap<QString, QString> owners;
        for (auto it = whole.users.begin(); it != whole.users.end(); ++it) {
            const QStringList place{QStringLiteral("users"), it.key(), QStringLiteral("username")};
            demand(identifier_error(it->username), place);
            if (owners.contains(it->username)) {
                problems.add(place, quoted(it->username) + QStringLiteral(" is the name of user ") +
                                        quoted(owners.value(it->username)) +
                                        QStringLiteral(" already"));
            }
            owners.insert(it->username, it.key());
        }
    }

    void check_permissions() {
        for (auto it = whole.permissions.begin(); it != whole.permissions.end(); ++it) {
            check_known(QStringLiteral("user"), it.key(), whole.users,
                        {QStringLiteral("permissions"), it.key()});
            for (auto grant = it->keyBegin(); grant != it->keyEnd(); ++grant) {
                check_known(QStringLiteral("element"), *grant, whole.elements,
                            {QStringLiteral("permissions"), it.key(), *grant});
            }
        }
    }

    const installation_t& whole;
    problems_t problems;
};

}  // namespace

problems_t check_rules(const installation_t& _installation) {
    return rules_t(_installation).check();
}

}  // namespace database::installation

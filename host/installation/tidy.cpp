#include "installation/tidy.h"

#include <QSet>
#include <utility>

#include "accounts/broker_hash.h"
#include "database/name_rules.h"
#include "database/permission.h"
#include "installation/item_limits.h"
#include "installation/place_text.h"

namespace database::installation {

namespace {

QString left_out(const QStringList& _place, const QString& _reason) {
    return QStringLiteral("%1 is left out: %2").arg(place_text(_place), _reason);
}

QString cleaned(const QStringList& _place, const QString& _reason) {
    return QStringLiteral("%1 is cleaned: %2").arg(place_text(_place), _reason);
}

/// Takes the entries out for which @p _error gives a reason.
template <typename value_t, typename error_t>
QStringList drop(const QString& _section, QMap<QString, value_t>* _entries, error_t _error) {
    QStringList notes;
    for (auto it = _entries->begin(); it != _entries->end();) {
        const QString reason = _error(it);
        if (reason.isEmpty()) {
            ++it;
            continue;
        }
        notes.append(left_out({_section, it.key()}, reason));
        it = _entries->erase(it);
    }
    return notes;
}

template <typename value_t>
QStringList drop_unnamed(const QString& _section, QMap<QString, value_t>* _entries) {
    return drop(_section, _entries, [](const auto& _entry) {
        const QString error = identifier_error(_entry.key());
        return error.isEmpty() ? error : QStringLiteral("the identifier ") + error;
    });
}

/// Function names or thermostat keys.
QStringList clean_labels(const QStringList& _place, QMap<QString, QString>* _ids) {
    QStringList notes;
    for (const QString& label : _ids->keys()) {
        const QString error =
            label.isEmpty() ? QStringLiteral("a name must not be empty") : plain_text_error(label);
        if (error.isEmpty()) {
            continue;
        }
        const QString item = _ids->take(label);
        const QString clean = cleaned_text(label);
        const bool kept = !clean.isEmpty() && !_ids->contains(clean);
        if (kept) {
            _ids->insert(clean, item);
        }
        notes.append((kept ? cleaned : left_out)(_place + QStringList(label), error));
    }
    return notes;
}

/// Limits that nobody can tell let nothing through.
QStringList clean_items(QMap<QString, item_t>* _items) {
    QStringList notes;
    for (auto it = _items->begin(); it != _items->end(); ++it) {
        const QStringList place{QStringLiteral("items"), it.key()};
        if (const QString error = value_error(it->value); !error.isEmpty()) {
            it->value = cleaned_value(it->value);
            notes.append(cleaned(place + QStringList(QStringLiteral("value")), error));
        }
        if (const QString error = limits_error(it->limits); !error.isEmpty()) {
            it->limits = {.writable = false};
            notes.append(place_text(place) + QStringLiteral(" is not writable: ") + error);
        }
    }
    return notes;
}

QStringList clean_thermostats(QMap<QString, thermostat_t>* _thermostats) {
    QStringList notes;
    for (auto it = _thermostats->begin(); it != _thermostats->end(); ++it) {
        notes += clean_labels({QStringLiteral("thermostats"), it.key(), QStringLiteral("ids")},
                              &it->ids);
    }
    return notes;
}

QStringList clean_elements(QMap<QString, element_t>* _elements) {
    QStringList notes;
    for (auto it = _elements->begin(); it != _elements->end(); ++it) {
        const QStringList place{QStringLiteral("elements"), it.key()};
        if (const QString error = plain_text_error(it->name); !error.isEmpty()) {
            it->name = cleaned_text(it->name);
            notes.append(cleaned(place + QStringList(QStringLiteral("name")), error));
        }
        notes += clean_labels(place + QStringList(QStringLiteral("functions")), &it->functions);
    }
    return notes;
}

QStringList drop_users(QMap<QString, user_t>* _users) {
    QStringList notes = drop_unnamed(QStringLiteral("users"), _users);
    notes += drop(QStringLiteral("users"), _users, [](const auto& _user) {
        const QString error = identifier_error(_user->username);
        return error.isEmpty() ? error : QStringLiteral("the user name ") + error;
    });
    return notes;
}

/// The entry of a grant's user or element tells why it is gone, so that a grant need not.
QStringList drop_grants(QMap<QString, QMap<QString, int>>* _permissions) {
    QStringList notes;
    _permissions->removeIf(
        [](const auto& _user) { return !identifier_error(_user.key()).isEmpty(); });
    for (auto user = _permissions->begin(); user != _permissions->end(); ++user) {
        user->removeIf(
            [](const auto& _grant) { return !identifier_error(_grant.key()).isEmpty(); });
        notes += drop(QStringLiteral("permissions/") + user.key(), &*user, [](const auto& _grant) {
            return *_grant >= 0 && *_grant <= permission::all_bits
                       ? QString()
                       : QStringLiteral("%1 is no permission").arg(*_grant);
        });
    }
    return notes;
}

QStringList drop_topic(QString* _topic) {
    const QString error = _topic->isEmpty() ? QString() : topic_error(*_topic);
    if (error.isEmpty()) {
        return {};
    }
    _topic->clear();
    return {left_out({QStringLiteral("topic")}, error)};
}

/// An empty id leads nowhere on purpose.
template <typename value_t>
QStringList cut(const QString& _kind, QString* _id, const QMap<QString, value_t>& _known,
                const QStringList& _place) {
    if (_id->isEmpty() || _known.contains(*_id)) {
        return {};
    }
    const QString gone = std::exchange(*_id, QString());
    return {left_out(_place, QStringLiteral("there is no %1 %2").arg(_kind, quoted(gone)))};
}

QStringList cut_items(const QStringList& _place, QMap<QString, QString>* _ids,
                      const QMap<QString, item_t>& _items) {
    QStringList notes;
    for (auto it = _ids->begin(); it != _ids->end(); ++it) {
        notes += cut(QStringLiteral("item"), &*it, _items, _place + QStringList(it.key()));
        *it = it->isEmpty() ? QString() : *it;
    }
    return notes;
}

QStringList cut_thermostats(installation_t* _whole) {
    QStringList notes;
    for (auto it = _whole->thermostats.begin(); it != _whole->thermostats.end(); ++it) {
        const QStringList place{QStringLiteral("thermostats"), it.key()};
        const auto cut_one = [&](const QString& _key, QString* _id) {
            return cut(QStringLiteral("item"), _id, _whole->items, place + QStringList(_key));
        };
        notes += cut_items(place + QStringList(QStringLiteral("ids")), &it->ids, _whole->items);
        notes += cut_one(QStringLiteral("id_actual"), &it->id_actual);
        notes += cut_one(QStringLiteral("id_windows_contact"), &it->id_windows_contact);
    }
    return notes;
}

QStringList cut_elements(installation_t* _whole) {
    const QString scenario = QStringLiteral("scenario");
    const QString thermostat = QStringLiteral("thermostat");
    QStringList notes;
    for (auto it = _whole->elements.begin(); it != _whole->elements.end(); ++it) {
        const QStringList place{QStringLiteral("elements"), it.key()};
        notes +=
            cut_items(place + QStringList(QStringLiteral("functions")), &it->functions,
                      _whole->items) +
            cut(scenario, &it->scenario, _whole->scenarios, place + QStringList(scenario)) +
            cut(thermostat, &it->thermostat, _whole->thermostats, place + QStringList(thermostat));
    }
    return notes;
}

QStringList drop_locked_out(QMap<QString, user_t>* _users) {
    return drop(QStringLiteral("users"), _users, [](const auto& _user) {
        return _user->password_hash.isEmpty() || accounts::is_password_hash(_user->password_hash)
                   ? QString()
                   : QStringLiteral("the password hash must be $7$iterations$salt$hash");
    });
}

QStringList drop_namesakes(QMap<QString, user_t>* _users) {
    QSet<QString> names;
    return drop(QStringLiteral("users"), _users, [&names](const auto& _user) {
        const qsizetype before = names.size();
        names.insert(_user->username);
        return names.size() > before
                   ? QString()
                   : quoted(_user->username) + QStringLiteral(" is another user's name already");
    });
}

void drop_grants_of_nobody(installation_t* _whole) {
    _whole->permissions.removeIf(
        [_whole](const auto& _user) { return !_whole->users.contains(_user.key()); });
    for (QMap<QString, int>& grants : _whole->permissions) {
        grants.removeIf(
            [_whole](const auto& _grant) { return !_whole->elements.contains(_grant.key()); });
    }
}

}  // namespace

QStringList tidy_entries(installation_t* _part) {
    QStringList notes = drop_topic(&_part->topic);
    notes += drop_unnamed(QStringLiteral("items"), &_part->items);
    notes += drop_unnamed(QStringLiteral("scenarios"), &_part->scenarios);
    notes += drop_unnamed(QStringLiteral("thermostats"), &_part->thermostats);
    notes += drop_unnamed(QStringLiteral("elements"), &_part->elements);
    notes += drop_users(&_part->users);
    notes += clean_items(&_part->items);
    notes += clean_thermostats(&_part->thermostats);
    notes += clean_elements(&_part->elements);
    notes += drop_grants(&_part->permissions);
    return notes;
}

QStringList tidy_whole(installation_t* _whole) {
    // In this order: what is taken out is not there for what refers to it.
    QStringList notes = tidy_entries(_whole);
    notes += drop_locked_out(&_whole->users);
    notes += drop_namesakes(&_whole->users);
    notes += cut_thermostats(_whole);
    notes += cut_elements(_whole);
    drop_grants_of_nobody(_whole);
    return notes;
}

}  // namespace database::installation

// What change_feed_t tells drivers and the host, and in which order.
#include <iterator>
#include <utility>

#include "live/change_feed_t.h"

namespace database::live {

namespace {

/// Among the elements of the portions: the users, who are no element.
const QString users_entry;

/// Rights of users who came or went that drivers work off in one go.
constexpr qsizetype most_rights_at_once = 16'384;

/// Elements of what is hidden.
std::set<QString> elements_of(const QList<shown_state_t>& _states) {
    std::set<QString> ids;
    for (const shown_state_t& state : _states) {
        ids.insert(state.element);
    }
    return ids;
}

}  // namespace

void change_feed_t::show() {
    if (stage == stage_t::loaded) {
        stage = stage_t::beginning;
        shower.settle();
    }
}

void change_feed_t::on_portions_over() {
    if (stage == stage_t::beginning) {
        stage = stage_t::showing;
        shower.add(model.withheld_elements());
        shower.settle();
    } else if (stage == stage_t::showing) {
        stage = stage_t::shown;
        Q_EMIT shown();
    } else if (!late_hidden.isEmpty()) {
        Q_EMIT states_hidden(std::exchange(late_hidden, {}));
    }
}

void change_feed_t::remember_hidden(const QList<shown_state_t>& _states) {
    const QStringList names =
        database->getPersistent()->getData()->getUsers()->getUsernamesAPI(true);
    const std::set<QString> known(names.begin(), names.end());
    for (const shown_state_t& state : _states) {
        if (known.count(state.username) > 0) {
            late_hidden.append(state);
        }
    }
}

void change_feed_t::show_again() {
    if (database) {
        shower.add(database->getPersistent()->getData()->getElements()->getObjects().keys());
    }
}

bool change_feed_t::is_large() const {
    return options.portion > 0 &&
           database->getPersistent()->getData()->getElements()->getObjects().size() >
               options.portion;
}

bool change_feed_t::is_large(const model_changes_t& _everything) const {
    return options.portion > 0 && _everything.elements.size() > options.portion;
}

void change_feed_t::hold_back(const model_changes_t& _changes) {
    if (options.portion == 0 || (_changes.everything && !is_large(_changes))) {
        return;
    }
    for (const QString& name : _changes.come_names) {
        if (stale.contains(name) || _changes.gone_names.count(name) > 0) {
            held_names.insert(name);
        }
    }
}

void change_feed_t::announce(const model_changes_t& _changes) {
    hold_back(_changes);
    if (_changes.everything || _changes.accounts) {
        Q_EMIT users_changed();
    }
    const QStringList withdrawn =
        _changes.everything ? database->getPersistent()->getData()->getUsers()->getUsersAPI(true)
                            : _changes.withdrawn;
    if (!withdrawn.isEmpty()) {
        Q_EMIT reading_withdrawn(withdrawn);
    }
    bool may_leave_states = _changes.everything;
    if (_changes.everything) {
        announce_everything(_changes);
    } else {
        may_leave_states = announce_users_and_elements(_changes);
        announce_realtime(_changes);
    }
    if (_changes.everything || _changes.topic) {
        Q_EMIT topic_changed();
    }
    if (_changes.everything || _changes.buses) {
        Q_EMIT bus_data_changed();
    }
    if (!_changes.hidden.isEmpty()) {
        Q_EMIT states_hidden(_changes.hidden);
    }
    if (!_changes.hidden.isEmpty() && shower.is_waiting()) {
        remember_hidden(_changes.hidden);
    }
    if (!_changes.grants.isEmpty()) {
        Q_EMIT grants_changed(_changes.grants);
    }
    if (may_leave_states) {
        Q_EMIT access_changed();
    }
    if (_changes.everything) {
        Q_EMIT reloaded();
    }
}

void change_feed_t::announce_everything(const model_changes_t& _changes) {
    // All of them are read again, so that nobody's former rights are remembered.
    stale.clear();
    if (!is_large(_changes)) {
        database_due = true;
        pacer.ask();
        return;
    }
    add_to_portions(_changes.elements, _changes.hidden);
    due_users = database->getPersistent()->getData()->getUsers()->getUsersAPI(true);
    shower.add_last(users_entry);
}

bool change_feed_t::announce_users_and_elements(const model_changes_t& _changes) {
    persistent::ps_notifier_t* notifier = database->getPersistent()->getNotifier();
    for (const QString& id : _changes.thermostats) {
        Q_EMIT notifier->onPersistentStatusThermo({{QStringLiteral("thermostat"), id}}, id);
    }
    if (_changes.topic && is_large()) {
        show_again();
    } else if (_changes.topic) {
        database_due = true;
        pacer.ask();
    }
    due_users += _changes.users;
    // Users before elements, so that one who is gone is gone at once; but nobody under a name whose
    // former rights are remembered, and not more than drivers work off in one go.
    const bool users_last = !held_names.empty() || _changes.grants.size() > most_rights_at_once;
    if (!_changes.users.isEmpty() && !users_last) {
        shower.add({users_entry});
    }
    const QStringList elements = elements_to_announce(_changes);
    add_to_portions(elements, _changes.hidden);
    if (!_changes.users.isEmpty() && users_last) {
        shower.add_last(users_entry);
    }
    const bool are_only_gone = options.portion > 0 && _changes.come_names.empty();
    return !elements.isEmpty() || (!_changes.users.isEmpty() && !are_only_gone);
}

void change_feed_t::add_to_portions(const QStringList& _ids, const QList<shown_state_t>& _hidden) {
    if (options.portion == 0 || _ids.size() <= options.portion) {
        shower.add(_ids);
        return;
    }
    const std::set<QString> hiding = elements_of(_hidden);
    QStringList first;
    QStringList others;
    for (const QString& id : _ids) {
        (hiding.count(id) > 0 ? first : others).append(id);
    }
    shower.add_first(first);
    shower.add(others);
}

QStringList change_feed_t::elements_to_announce(const model_changes_t& _changes) {
    if (options.portion == 0) {
        return _changes.elements;
    }
    std::set<QString> skipped;
    if (_changes.elements.size() > options.portion &&
        _changes.grants.size() <= most_rights_at_once) {
        skipped = _changes.rights_only;
    }
    QHash<QString, std::set<QString>> remembered;
    for (const QString& name : _changes.gone_names) {
        remembered.insert(name, {});
    }
    for (const grant_change_t& grant : _changes.grants) {
        if (held_names.count(grant.username) > 0) {
            skipped.erase(grant.element);
        } else if (skipped.count(grant.element) > 0 && remembered.contains(grant.username)) {
            remembered[grant.username].insert(grant.element);
        }
    }
    std::set<QString> shown = elements_of_held_names();
    for (const QString& id : _changes.elements) {
        if (skipped.count(id) == 0) {
            shown.insert(id);
        }
    }
    for (auto name = remembered.begin(); name != remembered.end(); ++name) {
        stale.add(name.key(), *name);
    }
    return {shown.begin(), shown.end()};
}

std::set<QString> change_feed_t::elements_of_held_names() {
    std::set<QString> ids;
    for (const QString& name : held_names) {
        std::optional<std::set<QString>> known = stale.take(name);
        if (!known) {
            const auto all = database->getPersistent()->getData()->getElements()->getObjects();
            known.emplace(all.keyBegin(), all.keyEnd());
        }
        ids.merge(*known);
    }
    return ids;
}

void change_feed_t::announce_realtime(const model_changes_t& _changes) {
    for (const QString& id : _changes.scenarios) {
        realtime->announce_scenario(id);
    }
    if (_changes.items.size() > options.bulk_limit && !is_large()) {
        items_due = true;
        pacer.ask();
        return;
    }
    realtime->announce_items(_changes.items);
}

void change_feed_t::announce_bulk() {
    if (!database) {
        return;
    }
    if (std::exchange(database_due, false)) {
        Q_EMIT database->getPersistent()->getNotifier()->onPersistentChangeDatabase({});
    }
    if (std::exchange(items_due, false)) {
        Q_EMIT database->getRealtime()->getNotifier()->onRealtimeChangeItems({});
    }
}

void change_feed_t::announce_element(const QString& _id) {
    if (!database) {
        return;
    }
    if (_id == users_entry) {
        announce_users();
        return;
    }
    model.show(_id);
    stale.renew(_id);
    Q_EMIT database->getPersistent()->getNotifier()->onPersistentChangeElement(
        {{QStringLiteral("element"), _id}}, _id);
}

void change_feed_t::announce_users() {
    QStringList ids = std::exchange(due_users, {});
    ids.removeDuplicates();
    persistent::ps_notifier_t* notifier = database->getPersistent()->getNotifier();
    if (ids.size() == 1) {
        Q_EMIT notifier->onPersistentChangeUser({{QStringLiteral("user"), ids.first()}},
                                                ids.first());
    } else {
        Q_EMIT notifier->onPersistentChangeUsers({});
    }
    if (!std::exchange(held_names, {}).empty()) {
        Q_EMIT users_changed();
    }
}

}  // namespace database::live

#include "live/realtime_writer_t.h"

#include "database/name_rules.h"
#include "live/table_writer_t.h"

namespace database::live {

using realtime::objects::rt_object_item_t;
using realtime::objects::rt_object_scenary_t;

realtime_writer_t::realtime_writer_t(database_t* _database, QObject* _parent)
    : QObject(_parent), database(_database), announced(_database) {}

realtime_writer_t::~realtime_writer_t() = default;

bool realtime_writer_t::write_item(const QString& _id, const QString& _value) {
    rt_object_item_t* item = database ? database->getRealtime()->getItems()->list(_id) : nullptr;
    if (item == nullptr) {
        return false;
    }
    const QString value = cleaned_value(_value);
    if (item->getValue() != value) {
        table_writer_t(database).set_value(item, value);
        dirty_items.insert(_id);
        Q_EMIT unsaved();
    }
    announce_items({_id});
    return true;
}

bool realtime_writer_t::write_scenario(const QString& _id, bool _execution) {
    rt_object_scenary_t* scenario =
        database ? database->getRealtime()->getScenary()->list(_id) : nullptr;
    if (scenario == nullptr) {
        return false;
    }
    if (scenario->getExecution() != _execution) {
        table_writer_t(database).set_execution(scenario, _execution);
        dirty_scenarios.insert(_id);
        Q_EMIT unsaved();
    }
    announce_scenario(_id);
    return true;
}

bool realtime_writer_t::take_item(const QString& _id, const QString& _value) {
    dirty_items.erase(_id);
    rt_object_item_t* item = database->getRealtime()->getItems()->list(_id);
    if (item == nullptr) {
        table_writer_t(database).put(_id, std::make_unique<rt_object_item_t>(_value));
        return true;
    }
    const bool changed = item->getValue() != _value;
    table_writer_t(database).set_value(item, _value);
    return changed;
}

bool realtime_writer_t::take_scenario(const QString& _id, bool _execution) {
    dirty_scenarios.erase(_id);
    rt_object_scenary_t* scenario = database->getRealtime()->getScenary()->list(_id);
    if (scenario == nullptr) {
        table_writer_t(database).put(_id, std::make_unique<rt_object_scenary_t>(_execution));
        return true;
    }
    const bool changed = scenario->getExecution() != _execution;
    table_writer_t(database).set_execution(scenario, _execution);
    return changed;
}

void realtime_writer_t::forget_item(const QString& _id) {
    dirty_items.erase(_id);
    table_writer_t(database).remove<rt_object_item_t>(_id);
}

void realtime_writer_t::forget_scenario(const QString& _id) {
    dirty_scenarios.erase(_id);
    table_writer_t(database).remove<rt_object_scenary_t>(_id);
}

void realtime_writer_t::announce_scenario(const QString& _id) {
    Q_EMIT database->getRealtime()->getNotifier()->onRealtimeChangeScenaryObjects(
        {{QStringLiteral("scenario"), _id}}, _id);
}

realtime_writer_t::pending_t realtime_writer_t::pending() const {
    pending_t values;
    for (const QString& id : dirty_items) {
        values.items.insert(id, database->getRealtime()->getItems()->list(id)->getValue());
    }
    for (const QString& id : dirty_scenarios) {
        values.scenarios.insert(id,
                                database->getRealtime()->getScenary()->list(id)->getExecution());
    }
    return values;
}

int realtime_writer_t::put_back(const pending_t& _pending) {
    int lost = 0;
    for (auto each = _pending.items.begin(); each != _pending.items.end(); ++each) {
        rt_object_item_t* const item = database->getRealtime()->getItems()->list(each.key());
        if (item == nullptr) {
            ++lost;
            continue;
        }
        table_writer_t(database).set_value(item, each.value());
        dirty_items.insert(each.key());
    }
    for (auto each = _pending.scenarios.begin(); each != _pending.scenarios.end(); ++each) {
        rt_object_scenary_t* const scenario =
            database->getRealtime()->getScenary()->list(each.key());
        if (scenario == nullptr) {
            ++lost;
            continue;
        }
        table_writer_t(database).set_execution(scenario, each.value());
        dirty_scenarios.insert(each.key());
    }
    if (!dirty_items.empty() || !dirty_scenarios.empty()) {
        Q_EMIT unsaved();
    }
    return lost;
}

void realtime_writer_t::clear_unsaved() {
    dirty_items.clear();
    dirty_scenarios.clear();
}

}  // namespace database::live

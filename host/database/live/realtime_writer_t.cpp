#include "database/live/realtime_writer_t.h"

namespace database::live {

using realtime::objects::rt_object_item_t;
using realtime::objects::rt_object_scenary_t;

realtime_writer_t::realtime_writer_t(database_t* _database, QObject* _parent)
    : QObject(_parent), database(_database) {}

realtime_writer_t::~realtime_writer_t() = default;

bool realtime_writer_t::write_item(const QString& _id, const QString& _value) {
    rt_object_item_t* item = database ? database->getRealtime()->getItems()->list(_id) : nullptr;
    if (item == nullptr) {
        return false;
    }
    if (item->getValue() != _value) {
        item->setValue(_value);
        dirty_items.insert(_id);
        Q_EMIT unsaved();
    }
    announce_item(_id);
    return true;
}

bool realtime_writer_t::write_scenary(const QString& _id, bool _execution) {
    rt_object_scenary_t* scenary =
        database ? database->getRealtime()->getScenary()->list(_id) : nullptr;
    if (scenary == nullptr) {
        return false;
    }
    if (scenary->getExecution() != _execution) {
        scenary->setExecution(_execution);
        dirty_scenaries.insert(_id);
        Q_EMIT unsaved();
    }
    announce_scenary(_id);
    return true;
}

bool realtime_writer_t::take_item(const QString& _id, const QString& _value) {
    dirty_items.erase(_id);
    realtime::dbs::rt_items_t* items = database->getRealtime()->getItems();
    rt_object_item_t* item = items->list(_id);
    if (item == nullptr) {
        items->put(_id, std::make_unique<rt_object_item_t>(_value));
        return true;
    }
    const bool changed = item->getValue() != _value;
    item->setValue(_value);
    return changed;
}

bool realtime_writer_t::take_scenary(const QString& _id, bool _execution) {
    dirty_scenaries.erase(_id);
    realtime::dbs::rt_scenary_t* scenaries = database->getRealtime()->getScenary();
    rt_object_scenary_t* scenary = scenaries->list(_id);
    if (scenary == nullptr) {
        scenaries->put(_id, std::make_unique<rt_object_scenary_t>(_execution));
        return true;
    }
    const bool changed = scenary->getExecution() != _execution;
    scenary->setExecution(_execution);
    return changed;
}

void realtime_writer_t::forget_item(const QString& _id) {
    dirty_items.erase(_id);
    database->getRealtime()->getItems()->remove(_id);
}

void realtime_writer_t::forget_scenary(const QString& _id) {
    dirty_scenaries.erase(_id);
    database->getRealtime()->getScenary()->remove(_id);
}

void realtime_writer_t::announce_item(const QString& _id) {
    Q_EMIT database->getRealtime()->getNotifier()->onRealtimeChangeItem(
        {{QStringLiteral("item"), _id}}, _id);
}

void realtime_writer_t::announce_scenary(const QString& _id) {
    Q_EMIT database->getRealtime()->getNotifier()->onRealtimeChangeScenaryObjects(
        {{QStringLiteral("scenario"), _id}}, _id);
}

void realtime_writer_t::clear_unsaved() {
    dirty_items.clear();
    dirty_scenaries.clear();
}

}  // namespace database::live

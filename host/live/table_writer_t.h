#pragma once

#include <QHash>
#include <QString>
#include <memory>
#include <utility>

#include "database/database_t.h"

namespace database::live {

/// The one way to change the objects that drivers read. Emits nothing: whoever writes announces.
/// A value to be made where it is needed; the database outlives it. Host thread only.
class table_writer_t {
 public:
    explicit table_writer_t(database_t* _database) : database(_database) {}

    /// Inserts the object into the table of its kind, or replaces the one of that id.
    template <class object_t>
    void put(const QString& _id, std::unique_ptr<object_t> _object) const {
        auto* const table = table_of(_object.get());
        table->put(_id, std::move(_object));
    }

    /// Takes an object of this kind out; an unknown id is ignored.
    template <class object_t>
    void remove(const QString& _id) const {
        table_of(static_cast<const object_t*>(nullptr))->remove(_id);
    }

    /// Takes all objects and grants out; the topic stays.
    void clear() const {
        data().elements.clear();
        data().items.clear();
        data().scenary.clear();
        data().thermo.clear();
        data().users.clear();
        data().permissions.clear();
        values().items.clear();
        values().scenary.clear();
    }

    /// Sets the bits of one grant (1 read, 2 write); 0 takes it out.
    void set_permission(const QString& _id_element, const QString& _user_id, int _bits) const {
        data().setPermission(_id_element, _user_id, _bits);
    }

    void set_topic(const QString& _topic) const {
        database->getPersistent()->topicbase.topic = _topic;
    }

    void set_value(realtime::objects::rt_object_item_t* _item, const QString& _value) const {
        _item->value = _value;
    }

    void set_execution(realtime::objects::rt_object_scenary_t* _scenario, bool _execution) const {
        _scenario->execution = _execution;
    }

 private:
    persistent::ps_data_t& data() const { return database->getPersistent()->data; }
    realtime::realtime_t& values() const { return *database->getRealtime(); }

    auto* table_of(const persistent::objects::ps_object_element_t*) const {
        return &data().elements;
    }
    auto* table_of(const persistent::objects::ps_object_item_t*) const { return &data().items; }
    auto* table_of(const persistent::objects::ps_object_scenary_t*) const {
        return &data().scenary;
    }
    auto* table_of(const persistent::objects::ps_object_thermostat_t*) const {
        return &data().thermo;
    }
    auto* table_of(const persistent::objects::ps_object_user_api_t*) const { return &data().users; }
    auto* table_of(const realtime::objects::rt_object_item_t*) const { return &values().items; }
    auto* table_of(const realtime::objects::rt_object_scenary_t*) const {
        return &values().scenary;
    }

    database_t* const database;
};

}  // namespace database::live

#pragma once

#include <QList>
#include <memory>
#include <utility>

#include "database/database_t.h"
#include "database/persistent/objects/psoe_scenario.h"
#include "database/persistent/objects/psoe_thermo_logic.h"
#include "live/table_writer_t.h"

namespace fakes {

namespace objects = database::persistent::objects;
namespace values = database::realtime::objects;

/// An installation built by hand: the real database objects without a store behind them. Requests
/// are recorded and not answered. Changes of elements, users and grants change the tables only; a
/// test emits the notifier's signal itself.
class memory_database_t {
 public:
    using ids_t = QMap<QString, QVariant>;

    memory_database_t() {
        using database::persistent::ps_requests_t;
        const ps_requests_t* requests = db.getPersistent()->getRequests();
        QObject::connect(requests, &ps_requests_t::itemValueRequested, &db,
                         [this](const QString& _id, const QString& _value) {
                             item_requests.append({_id, _value});
                         });
        QObject::connect(requests, &ps_requests_t::scenaryExecutionRequested, &db,
                         [this](const QString& _id, bool _execution) {
                             scenary_requests.append({_id, _execution});
                         });
    }
    Q_DISABLE_COPY_MOVE(memory_database_t)

    database::database_t* get() { return &db; }
    const database::persistent::ps_data_t* data() { return db.getPersistent()->getData(); }
    database::persistent::ps_notifier_t* persistent() { return db.getPersistent()->getNotifier(); }
    database::realtime::rt_notifier_t* realtime() { return db.getRealtime()->getNotifier(); }

    /// Changes the tables without announcing it.
    database::live::table_writer_t tables() { return database::live::table_writer_t(&db); }

    void set_topic(const QString& _topic) { tables().set_topic(_topic); }

    void add_item(const QString& _id, const QString& _value) {
        put<objects::ps_object_item_t>(_id, _id, db.getPersistent()->getRequests());
        put<values::rt_object_item_t>(_id, _value);
    }
    void add_scenary(const QString& _id, bool _execution) {
        put<objects::ps_object_scenary_t>(_id, _id, db.getPersistent()->getRequests());
        put<values::rt_object_scenary_t>(_id, _execution);
    }
    void add_thermostat(const QString& _id, const ids_t& _ids, const QString& _id_actual,
                        const QString& _id_win) {
        put<objects::ps_object_thermostat_t>(
            _id, objects::ps_object_thermo_base_t(_ids, _id_actual), _id_win);
    }

    void remove_thermostat(const QString& _id) {
        tables().remove<objects::ps_object_thermostat_t>(_id);
    }

    void add_element(const QString& _id, const QString& _name, int _type, const ids_t& _functions,
                     qint32 _flags = 0) {
        const objects::ps_element_data_t element{_name, _type, _flags, _functions};
        put<objects::ps_object_element_t>(_id, element);
    }
    void add_scenario_element(const QString& _id, const QString& _name, const QString& _scenario_id,
                              qint32 _flags = 0, const ids_t& _functions = {}) {
        const objects::ps_element_data_t element{_name, 8, _flags, _functions};
        put<objects::psoe_scenario>(_id, element, _scenario_id);
    }
    void add_thermo_element(const QString& _id, const QString& _name, const QString& _thermo_id) {
        const objects::ps_element_data_t element{_name, 17, 0, {}};
        put<objects::psoe_thermo_logic>(_id, element, _thermo_id);
    }
    void remove_element(const QString& _id) { tables().remove<objects::ps_object_element_t>(_id); }

    void add_user(const QString& _id, const QString& _name) {
        put<objects::ps_object_user_api_t>(_id, _name);
    }
    void remove_user(const QString& _id) { tables().remove<objects::ps_object_user_api_t>(_id); }
    /// @param _bits 1 read, 2 write, 0 none
    void grant(const QString& _user_id, const QString& _element_id, int _bits) {
        tables().set_permission(_element_id, _user_id, _bits);
    }

    /// Stores the value of a known item without a word.
    void store_item(const QString& _id, const QString& _value) {
        tables().set_value(db.getRealtime()->getItems()->list(_id), _value);
    }
    void remove_value(const QString& _id) { tables().remove<values::rt_object_item_t>(_id); }

    /// Stores the value of a known item, then announces it.
    void set_item(const QString& _id, const QString& _value) {
        store_item(_id, _value);
        Q_EMIT realtime()->onRealtimeChangeItem({}, _id);
    }
    /// Stores the execution state of a known scenario, then announces it.
    void set_scenary(const QString& _id, bool _execution) {
        tables().set_execution(db.getRealtime()->getScenary()->list(_id), _execution);
        Q_EMIT realtime()->onRealtimeChangeScenaryObjects({}, _id);
    }

    QList<std::pair<QString, QString>> item_requests;  ///< item id, requested value
    QList<std::pair<QString, bool>> scenary_requests;  ///< scenario id, requested execution

 private:
    template <class object_t, class... args_t>
    void put(const QString& _id, const args_t&... _args) {
        tables().put(_id, std::make_unique<object_t>(_args...));
    }

    database::database_t db;
};

}  // namespace fakes

#pragma once

#include <QList>
#include <memory>
#include <utility>

#include "database/database_t.h"
#include "database/persistent/objects/psoe_scenario.h"
#include "database/persistent/objects/psoe_thermo_logic.h"

namespace fakes {

namespace objects = database::persistent::objects;

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
    database::persistent::ps_data_t* data() { return db.getPersistent()->getData(); }
    database::persistent::ps_notifier_t* persistent() { return db.getPersistent()->getNotifier(); }
    database::realtime::rt_notifier_t* realtime() { return db.getRealtime()->getNotifier(); }

    void set_topic(const QString& _topic) { db.getPersistent()->getTopicbase()->setTopic(_topic); }

    void add_item(const QString& _id, const QString& _value) {
        put(data()->getItems(), _id, _id, db.getPersistent()->getRequests());
        put(db.getRealtime()->getItems(), _id, _value);
    }
    void add_scenary(const QString& _id, bool _execution) {
        put(data()->getScenary(), _id, _id, db.getPersistent()->getRequests());
        put(db.getRealtime()->getScenary(), _id, _execution);
    }
    void add_thermostat(const QString& _id, const ids_t& _ids, const QString& _id_actual,
                        const QString& _id_win) {
        put(data()->getThermo(), _id, objects::ps_object_thermo_base_t(_ids, _id_actual), _id_win);
    }

    void add_element(const QString& _id, const QString& _name, int _type, const ids_t& _functions,
                     qint32 _flags = 0) {
        const objects::ps_element_data_t element{_name, _type, _flags, _functions};
        put(data()->getElements(), _id, element);
    }
    void add_scenario_element(const QString& _id, const QString& _name, const QString& _scenario_id,
                              qint32 _flags = 0, const ids_t& _functions = {}) {
        const objects::ps_element_data_t element{_name, 8, _flags, _functions};
        data()->getElements()->put(_id,
                                   std::make_unique<objects::psoe_scenario>(element, _scenario_id));
    }
    void add_thermo_element(const QString& _id, const QString& _name, const QString& _thermo_id) {
        const objects::ps_element_data_t element{_name, 17, 0, {}};
        data()->getElements()->put(
            _id, std::make_unique<objects::psoe_thermo_logic>(element, _thermo_id));
    }
    void remove_element(const QString& _id) { data()->getElements()->remove(_id); }

    void add_user(const QString& _id, const QString& _name) { put(data()->getUsers(), _id, _name); }
    void remove_user(const QString& _id) { data()->getUsers()->remove(_id); }
    /// @param _bits 1 read, 2 write, 0 none
    void grant(const QString& _user_id, const QString& _element_id, int _bits) {
        data()->setPermission(_element_id, _user_id, _bits);
    }

    /// Stores the value of a known item, then announces it.
    void set_item(const QString& _id, const QString& _value) {
        db.getRealtime()->getItems()->list(_id)->setValue(_value);
        Q_EMIT realtime()->onRealtimeChangeItem({}, _id);
    }
    /// Stores the execution state of a known scenario, then announces it.
    void set_scenary(const QString& _id, bool _execution) {
        db.getRealtime()->getScenary()->list(_id)->setExecution(_execution);
        Q_EMIT realtime()->onRealtimeChangeScenaryObjects({}, _id);
    }

    QList<std::pair<QString, QString>> item_requests;  ///< item id, requested value
    QList<std::pair<QString, bool>> scenary_requests;  ///< scenario id, requested execution

 private:
    template <class object_t, class... args_t>
    static void put(database::base::table_t<object_t>* _table, const QString& _id,
                    const args_t&... _args) {
        _table->put(_id, std::make_unique<object_t>(_args...));
    }

    database::database_t db;
};

}  // namespace fakes

#pragma once

#include <QPointer>
#include <QStringList>
#include <map>
#include <memory>
#include <set>

#include "installation/installation_t.h"
#include "live/grant_change_t.h"
#include "live/realtime_writer_t.h"
#include "live/shown_state_t.h"
#include "live/write_gate_t.h"
#include "store/change_batch_t.h"

namespace database::live {

/// What changed in memory and is to be announced; ids in id order.
struct model_changes_t {
    bool everything = false;
    bool topic = false;
    bool accounts = false;
    bool buses = false;
    QStringList items, scenarios, thermostats, elements, users;
    QStringList withdrawn;        ///< ids of users who may read some element no longer
    QList<shown_state_t> hidden;  ///< what users could read before and cannot now
    QList<grant_change_t> grants;
    std::set<QString> gone_names, come_names;  ///< of users
    /// Of the elements, those of which nothing changed but the rights of users of these names.
    std::set<QString> rights_only;
};

/// Makes the objects in memory hold what values from the store say. Emits nothing.
class model_t {
 public:
    model_t(database_t* _database, realtime_writer_t* _realtime, write_gate_t* _gate);

    /// Replaces everything; unsaved realtime values give way to the store's. Only what is hidden by
    /// it is told, the grants that are others, the elements of before and after, and names of
    /// users.
    /// @param _withholds drivers are shown no element until show()
    model_changes_t fill(const installation::installation_t& _installation,
                         bool _withholds = false);

    /// Drivers can see this element from now on, if there is one that was withheld.
    void show(const QString& _id);
    QStringList withheld_elements() const;

    /// Replaces the objects of the batch's keys; a key that @p _part lacks is taken out.
    model_changes_t apply(const store::change_batch_t& _batch,
                          const installation::installation_t& _part);

 private:
    void replace(const store::change_batch_t& _batch, const installation::installation_t& _part,
                 model_changes_t* _changes);
    void apply_limits(const std::set<QString>& _ids, const installation::installation_t& _part);
    std::set<QString> equal_elements(const store::change_batch_t& _batch,
                                     const installation::installation_t& _part) const;
    /// Ids of users by their names.
    using names_t = QMap<QString, QString>;
    names_t usernames() const;
    void tell_names(const names_t& _before, model_changes_t* _changes) const;
    void tell_rights_only(const std::set<QString>& _equal, model_changes_t* _changes) const;
    void put_item(const QString& _id);
    void put_scenario(const QString& _id);

    QStringList apply_items(const std::set<QString>& _ids,
                            const installation::installation_t& _part);
    QStringList apply_scenarios(const std::set<QString>& _ids,
                                const installation::installation_t& _part);
    void apply_thermostats(const std::set<QString>& _ids,
                           const installation::installation_t& _part);
    void apply_elements(const std::set<QString>& _ids, const installation::installation_t& _part);
    /// Of a model without any.
    void put_grants(const installation::installation_t& _whole);
    /// Tells the grants that are others, and the users who may read one of the elements no longer.
    void apply_grants(const std::set<QString>& _ids, const installation::installation_t& _part,
                      model_changes_t* _changes);
    /// The name as it was; of a new user as it will be.
    QString name_of(const QString& _user, const installation::installation_t& _part) const;
    void apply_users(const std::set<QString>& _ids, const installation::installation_t& _part);

    /// Ids of the elements that stand for one of the thermostats.
    std::set<QString> elements_of(const std::set<QString>& _thermostats) const;

    QPointer<database_t> database;
    realtime_writer_t* const realtime;
    write_gate_t* const gate;
    using element_t = persistent::objects::ps_object_element_t;
    std::map<QString, std::unique_ptr<element_t>> withheld;
    bool withholding = false;  ///< what is filled in is withheld
};

}  // namespace database::live

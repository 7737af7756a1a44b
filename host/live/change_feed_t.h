#pragma once

#include <QObject>

#include "live/bulk_pacer_t.h"
#include "live/model_t.h"
#include "live/portions_t.h"
#include "live/stale_names_t.h"
#include "live/told_once_t.h"
#include "store/change_log_t.h"
#include "store/connection_t.h"

namespace database::live {

/// Brings what others wrote into the objects in memory and announces it, always in this order:
/// all objects of the batch first, then users_changed(), then the notifiers, then the rest. Bulk
/// signals are paced; what they stand for is in memory by then. A change of elements or grants is
/// never one of them: it has to count at once. Of more elements than a portion the bulk signals are
/// changes of elements, in portions.
class change_feed_t : public QObject {
    Q_OBJECT

 public:
    struct options_t {
        int bulk_limit = 64;  ///< more item values in one batch are announced by one bulk signal
        /// Elements that are announced at a time; an installation with more is shown by show()
        /// only. 0: as many as there are.
        int portion = 0;
    };

    change_feed_t(store::connection_t& _connection, database_t* _database,
                  realtime_writer_t* _realtime, write_gate_t* _gate, const options_t& _options,
                  QObject* _parent = nullptr);
    ~change_feed_t() override;

    /// Fills the model; what is written from then on comes as changes. Announces nothing.
    ::base::result_t load();

    /// Drivers have been started: shows them what load() has withheld. shown() follows.
    void show();

    /// Announces every element once more: what drivers have published is lost.
    void show_again();

    /// Whose portions have to be answered, so that they are paced.
    portions_t* portions() { return &shower; }

    /// Users under these names are not to be let in yet: drivers take them for former ones.
    const std::set<QString>& held_back() const { return held_names; }

    /// Looks whether something was written, and if so applies and announces it.
    void check();

    /// Number of the newest change that is in memory, and announced but for what is_announced()
    /// says.
    qint64 seen() const { return seen_sequence; }
    /// Looks, whether anything was written or not.
    void check_anew();
    /// False: a bulk signal waits for its turn, or elements for their portion.
    bool is_announced() const { return !database_due && !items_due && !shower.is_waiting(); }
    /// Why the last look went wrong; empty: it did not.
    QString last_failure() const { return failure; }

    /// Fills the model again, from another file perhaps, and announces everything. Values that wait
    /// for their save are kept, or told to be lost.
    ::base::result_t reload();

    /// For a caller that holds a transaction: applies what is there, without announcing.
    ::base::result_t absorb(model_changes_t* _changes);
    /// Announces what absorb() applied; to be called after the transaction.
    void announce(const model_changes_t& _changes);

    /// Tells by failed() what is new of @p _notes, sentences about rows that nobody is shown.
    void tell_notes(const QStringList& _notes);

 Q_SIGNALS:
    /// User names or passwords changed, users came or went: the broker's accounts are out of date.
    void users_changed();
    /// The installation's topic may be another.
    void topic_changed();
    /// What the bus has to do with items or scenarios is another.
    void bus_data_changed();
    /// These users, by id, may read something no longer; before the notifiers, too.
    void reading_withdrawn(const QStringList& _users);
    /// What users could read before and cannot now, behind the notifiers: retained packets of it
    /// may be left.
    void states_hidden(const QList<database::live::shown_state_t>& _states);
    /// These grants are others now.
    void grants_changed(const QList<database::live::grant_change_t>& _changes);
    /// Grants, users or elements may have changed: retained packets may have to go.
    void access_changed();
    /// What drivers make of show() is on the broker.
    void shown();
    /// Everything was read again.
    void reloaded();
    /// The store could not be read; the next look tries again. The same sentence once only, until a
    /// look goes well. Or a row was left out or cleaned: once for each.
    void failed(const QString& _sentence);

 private:
    ::base::result_t read_whole(installation::installation_t* _whole);
    /// Inside the transaction that has read what there is.
    ::base::result_t note_seen();
    ::base::result_t read_changes(model_changes_t* _changes);
    ::base::result_t catch_up();
    void tell(const QString& _failure);
    bool is_large() const;
    /// The same of an import, which may have taken most elements away.
    bool is_large(const model_changes_t& _everything) const;
    void hold_back(const model_changes_t& _changes);
    void announce_everything(const model_changes_t& _changes);
    /// Whether more retained packets than the hidden ones may have to go.
    bool announce_users_and_elements(const model_changes_t& _changes);
    /// What hides something first, when they are more than a portion.
    void add_to_portions(const QStringList& _ids, const QList<shown_state_t>& _hidden);
    /// In the order of their ids, but without those that need no announcement of their own.
    QStringList elements_to_announce(const model_changes_t& _changes);
    std::set<QString> elements_of_held_names();
    void announce_realtime(const model_changes_t& _changes);
    void announce_bulk();
    void announce_element(const QString& _id);
    void announce_users();
    void on_portions_over();
    void remember_hidden(const QList<shown_state_t>& _states);

    store::connection_t& connection;
    QPointer<database_t> database;
    realtime_writer_t* const realtime;
    const options_t options;
    bulk_pacer_t pacer;
    portions_t shower;
    /// What portions_over() means: that drivers have begun, that they have been shown everything.
    enum class stage_t { loaded, beginning, showing, shown };
    stage_t stage = stage_t::loaded;
    QStringList due_users;  ///< to be announced by the portions
    /// To be told once more behind the portions: until its turn an element publishes for those who
    /// could read it before.
    QList<shown_state_t> late_hidden;
    stale_names_t stale;
    std::set<QString> held_names;
    bool database_due = false;  ///< a bulk signal waits for the pacer
    bool items_due = false;     ///< and this one
    model_t model;
    store::change_log_t log;
    qint64 last_sequence = 0;  ///< of the rows that were read
    qint64 seen_sequence = 0;
    bool incomplete = false;  ///< rows may be missing in the log: all has to be read again
    told_once_t told_notes;
    QString failure;  ///< what was told last; empty after a look that went well
};

}  // namespace database::live

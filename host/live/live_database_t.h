#pragma once

#include <QObject>
#include <optional>

#include "live/change_feed_t.h"
#include "live/realtime_saver_t.h"
#include "live/wal_keeper_t.h"
#include "live/wal_watch_t.h"
#include "store/change_mark_t.h"
#include "store/left_logs_t.h"

namespace database::live {

/// Keeps the objects in memory and an installation database on disk the same while the server
/// runs, whoever writes. A file that is removed is waited for, one that is put in its place is read
/// anew. One for each path; host thread only.
class live_database_t : public QObject {
    Q_OBJECT

 public:
    struct options_t {
        int poll_ms = 1000;       ///< slow look for changes that the file watch missed
        int save_delay_ms = 500;  ///< see realtime_saver_t
        int save_iterations = 5;
        int bulk_limit = 64;  ///< see change_feed_t
        int portion = 0;      ///< see change_feed_t
    };

    /// @param _database filled by open(); not owned, may die first
    live_database_t(database_t* _database, const options_t& _options, QObject* _parent = nullptr);
    /// close().
    ~live_database_t() override;

    /// Opens or creates the file, fills the objects and begins to follow changes. Once only.
    ::base::result_t open(const QString& _path);

    /// Saves every realtime value, waiting up to five seconds for other writers, and follows the
    /// database no longer. A failure says how many values are lost, and why.
    ::base::result_t close();

    /// Reads the users with their password hashes, by user id: who may sign in by now.
    ::base::result_of_t<QMap<QString, installation::user_t>> read_users();

    /// Reads what the bus has to do with items and scenarios; the rest of the value is empty.
    ::base::result_of_t<installation::installation_t> read_bus_data();

    /// A reason of lag(): it goes on and takes time.
    static QString taking_over();

    /// Why the change @p _mark is not in memory and announced yet, a clause; empty: it is. Looks
    /// for it if need be.
    QString lag(const store::change_mark_t& _mark);

    /// Where bus drivers set values.
    realtime_writer_t* writer() { return &realtime; }
    /// Through which requests for values come to bus drivers.
    write_gate_t* gate() { return &requests; }
    /// Whose signals tell the host what else to do.
    change_feed_t* feed() { return &changes; }

 Q_SIGNALS:
    /// A read or a save failed and will be tried again, or a row was left out or cleaned; one
    /// sentence for the log. Also while open() runs.
    void failed(const QString& _sentence);

 private:
    ::base::result_t begin_to_follow();
    void on_woken();
    void on_polled();
    /// The file that is open is not the one of this name any more.
    void leave(const ::base::result_t& _place);
    ::base::result_t take_over();

    const options_t options;
    QString path;
    store::connection_t connection;
    realtime_writer_t realtime;
    write_gate_t requests;
    change_feed_t changes;
    realtime_saver_t saver;
    wal_keeper_t keeper;
    std::optional<store::left_logs_t> logs;  ///< of the file that is open
    QString failure;                         ///< what leave() told last
    wal_watch_t* watch = nullptr;            ///< null unless open
};

}  // namespace database::live

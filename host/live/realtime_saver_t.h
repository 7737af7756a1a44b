#pragma once

#include <QObject>
#include <QTimer>

#include "live/change_feed_t.h"

namespace database::live {

/// Saves realtime values lazily: some time after the last change, so that a busy bus costs few
/// transactions. Its own saves do not come back as changes.
class realtime_saver_t : public QObject {
    Q_OBJECT

 public:
    /// @param _delay_ms from the last change to the save, in milliseconds
    /// @param _iterations how often further changes may put the save off; after that it comes
    ///        @p _delay_ms later whatever changes
    realtime_saver_t(store::connection_t& _connection, database_t* _database,
                     realtime_writer_t* _realtime, change_feed_t* _feed, int _delay_ms,
                     int _iterations, QObject* _parent = nullptr);
    ~realtime_saver_t() override;

    /// Saves what is unsaved now; after an error, or while another program holds the store's
    /// write lock, it stays unsaved.
    ::base::result_t save();

 Q_SIGNALS:
    /// Values could not be saved, it is tried again; the same sentence once only, until they could.
    void failed(const QString& _sentence);

 private:
    void on_unsaved();
    void on_timeout();
    ::base::result_t write_values();

    store::connection_t& connection;
    QPointer<database_t> database;
    realtime_writer_t* const realtime;
    change_feed_t* const feed;
    const int iterations;
    int restarts = 0;
    QString failure;  ///< what was told last; empty after a save that went well
    QTimer delay;
};

}  // namespace database::live

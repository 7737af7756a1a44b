#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

namespace database::live {

/// Says when another program may have committed to a database or exchanged its file: at once when
/// the write-ahead log or the folder changes, and at a slow interval for what notifications miss.
/// Says so too often, never too rarely.
class wal_watch_t : public QObject {
    Q_OBJECT

 public:
    /// @param _poll_ms interval of the slow look, in milliseconds
    wal_watch_t(const QString& _database_path, int _poll_ms, QObject* _parent = nullptr);
    ~wal_watch_t() override;

 Q_SIGNALS:
    void woken();
    /// The interval of the slow look is over; after woken().
    void polled();

 private:
    void on_file_changed();
    void on_poll();
    /// A watch is lost when the file is deleted or replaced.
    void arm();

    const QString path;
    const QString folder;
    QFileSystemWatcher* const watcher;
    QTimer poll;
    QTimer settle;
};

}  // namespace database::live

#include "live/wal_watch_t.h"

#include <QFileInfo>

namespace database::live {

wal_watch_t::wal_watch_t(const QString& _database_path, int _poll_ms, QObject* _parent)
    : QObject(_parent),
      path(_database_path + QLatin1String("-wal")),
      folder(QFileInfo(_database_path).absolutePath()),
      watcher(new QFileSystemWatcher(this)) {
    connect(watcher, &QFileSystemWatcher::fileChanged, this, &wal_watch_t::on_file_changed);
    connect(watcher, &QFileSystemWatcher::directoryChanged, this, &wal_watch_t::on_file_changed);
    connect(&poll, &QTimer::timeout, this, &wal_watch_t::on_poll);
    connect(&settle, &QTimer::timeout, this, &wal_watch_t::woken);
    // A commit shows to readers a moment after its last write to the log, which is what wakes us.
    settle.setInterval(20);
    settle.setSingleShot(true);
    poll.start(_poll_ms);
    arm();
}

wal_watch_t::~wal_watch_t() = default;

void wal_watch_t::on_file_changed() {
    arm();
    settle.start();
    Q_EMIT woken();
}

void wal_watch_t::on_poll() {
    arm();
    Q_EMIT woken();
    Q_EMIT polled();
}

void wal_watch_t::arm() {
    if (!watcher->files().contains(path) && QFileInfo::exists(path)) {
        watcher->addPath(path);
    }
    if (!watcher->directories().contains(folder) && QFileInfo::exists(folder)) {
        watcher->addPath(folder);
    }
}

}  // namespace database::live

#pragma once

#include <QMutex>
#include <QMutexLocker>
#include <QReadLocker>
#include <QReadWriteLock>
#include <QRecursiveMutex>
#include <QWriteLocker>

#include "base/thread_annotations.h"

/// Qt's locks, and lockers for them, that clang's thread-safety analysis follows. Each is Qt's
/// own class with another name: same size, same behaviour, usable wherever Qt's is.
namespace base {

class TORLAN_CAPABILITY("mutex") mutex_t : public QMutex {};
class TORLAN_CAPABILITY("mutex") recursive_mutex_t : public QRecursiveMutex {};
class TORLAN_CAPABILITY("lock") read_write_lock_t : public QReadWriteLock {};

/// Holds a mutex_t or a recursive_mutex_t.
template <class Mutex>
class TORLAN_SCOPED_CAPABILITY mutex_locker_t {
 public:
    explicit mutex_locker_t(Mutex* _mutex) TORLAN_ACQUIRE(_mutex) : locker(_mutex) {}
    ~mutex_locker_t() TORLAN_RELEASE() {}
    Q_DISABLE_COPY_MOVE(mutex_locker_t)

 private:
    QMutexLocker<Mutex> locker;
};

/// Holds a read_write_lock_t beside other readers.
class TORLAN_SCOPED_CAPABILITY read_locker_t {
 public:
    explicit read_locker_t(read_write_lock_t* _lock) TORLAN_ACQUIRE_SHARED(_lock) : locker(_lock) {}
    ~read_locker_t() TORLAN_RELEASE() {}
    Q_DISABLE_COPY_MOVE(read_locker_t)

 private:
    QReadLocker locker;
};

/// Holds a read_write_lock_t alone.
class TORLAN_SCOPED_CAPABILITY write_locker_t {
 public:
    explicit write_locker_t(read_write_lock_t* _lock) TORLAN_ACQUIRE(_lock) : locker(_lock) {}
    ~write_locker_t() TORLAN_RELEASE() {}
    Q_DISABLE_COPY_MOVE(write_locker_t)

 private:
    QWriteLocker locker;
};

}  // namespace base

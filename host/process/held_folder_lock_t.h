#pragma once

#include <QString>

namespace process {

/// Says that the owner of a private folder lives: a lock on a file in it, which the kernel lets go
/// of when the process ends, however it ends. Not inherited by children. Unlike a file_lock_t it
/// also keeps out the owner itself, which may have several folders, and its file is never seen
/// unlocked.
class held_folder_lock_t {
 public:
    held_folder_lock_t() = default;
    ~held_folder_lock_t() { release(); }
    Q_DISABLE_COPY_MOVE(held_folder_lock_t)

    /// Locks a folder that was made a moment ago. False: errno says why not.
    bool take(const QString& _folder);
    void release();

    /// Removes the folders in @p _parent whose names begin with @p _prefix and whose owners were
    /// processes of this user that live no more: no other user's, none that somebody else could
    /// have written to, and none without a lock file.
    static void remove_left(const QString& _parent, const QString& _prefix);

 private:
    int descriptor = -1;
};

}  // namespace process

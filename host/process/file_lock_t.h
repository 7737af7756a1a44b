#pragma once

#include <QString>
#include <chrono>

namespace process {

/// A file that one process at a time holds. The kernel keeps the lock: it is free again the moment
/// its holder has ended, whatever ended it, and what the file says does not matter.
///
/// Children do not have it. It belongs to the process, not to this object's thread: two objects of
/// one process on one file do not keep each other out.
class file_lock_t {
 public:
    enum class state_t {
        free,    ///< nobody's
        ours,    ///< this object's
        held,    ///< another process's, see holder()
        failed,  ///< the file cannot be made or opened, or is no plain file; errno says why
    };

    /// @p _path of a file that is made when it is missing, for its owner only, and stays.
    explicit file_lock_t(const QString& _path) : path(_path) {}
    Q_DISABLE_COPY_MOVE(file_lock_t)
    ~file_lock_t() { release(); }

    /// At once. Never free.
    state_t take();
    void release();
    /// Without taking it, nor making the file.
    state_t look();

    /// Who held it at the last look() or take(); 0: nobody, or a process of another machine or
    /// container.
    qint64 holder() const { return process; }

    /// Asks the holder to end, kills it when it has not after @p _patience, and waits for the lock,
    /// blocking. False: it cannot be seen or ended from here.
    bool end_holder(std::chrono::milliseconds _patience);

 private:
    state_t take_opened(int _opened);
    bool wait_until_free(std::chrono::milliseconds _limit);

    const QString path;
    int descriptor = -1;
    qint64 process = 0;
};

}  // namespace process

#pragma once

#include <QString>

namespace process {

/// A file that this process and the children that inherit its descriptor() hold together: the
/// kernel frees it when the last of them has ended. Who holds it cannot be asked.
class inherited_lock_t {
 public:
    enum class state_t { ours, held, failed };

    /// @p _path of a file that is made when it is missing, for its owner only, and stays.
    explicit inherited_lock_t(const QString& _path) : path(_path) {}
    Q_DISABLE_COPY_MOVE(inherited_lock_t)
    /// Children keep it.
    ~inherited_lock_t();

    /// At once; failed: errno says why.
    state_t take();

    /// -1 unless it is ours.
    int descriptor() const { return held; }

 private:
    const QString path;
    int held = -1;
};

}  // namespace process

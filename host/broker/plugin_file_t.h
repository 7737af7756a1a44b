#pragma once

#include <QByteArray>
#include <QString>

#include "base/result_t.h"

namespace broker {

/// The library that the broker loads, held open. The broker may run as an account that cannot reach
/// the folder, and what was judged must be what it loads.
class plugin_file_t {
 public:
    plugin_file_t() = default;
    Q_DISABLE_COPY_MOVE(plugin_file_t)
    ~plugin_file_t() { close(); }

    /// Where it is installed: beside the library of this class.
    static QString usual_path();

    /// Refuses one that other users of this machine can change.
    base::result_t open(const QString& _path);

    /// For the broker to inherit; -1: not open.
    int descriptor() const { return held; }
    /// Its path in a process that has inherited the descriptor.
    QByteArray path_in_child() const;

 private:
    void close();

    int held = -1;
};

}  // namespace broker

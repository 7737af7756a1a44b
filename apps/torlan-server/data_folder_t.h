#pragma once

#include <QString>

#include "base/result_t.h"
#include "process/file_lock_t.h"

namespace torlan {

/// The host's folder: made when it is missing (mode 0700) and locked against a second host.
class data_folder_t {
 public:
    explicit data_folder_t(const QString& _path);
    Q_DISABLE_COPY_MOVE(data_folder_t)
    /// Unlocks it.
    ~data_folder_t() = default;

    /// Makes it when it is missing, and locks it.
    base::result_t open();

    /// Takes out what open() made, with everything that was written into it since. A folder that
    /// was there before stays as it is.
    void take_back();

    QString file(const QString& _name) const;

 private:
    base::result_t make();

    const QString path;
    QString made;  ///< topmost folder that open() made; empty: none
    process::file_lock_t lock;
};

}  // namespace torlan

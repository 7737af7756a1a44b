#pragma once

#include <QJsonObject>
#include <QString>
#include <memory>

#include "base/result_t.h"
#include "process/file_lock_t.h"

namespace torlan {

/// The file that holds the settings document, for one server at a time.
///
/// Every read asks the file, so what someone edited by hand is never overwritten unseen. A write
/// makes a new file beside it, brings file and folder to the disk and renames: whenever the
/// program or the machine dies, the old or the new document is there, whole.
class settings_file_t {
 public:
    /// Largest document in bytes.
    static constexpr qint64 max_bytes = 4 * 1024 * 1024;

    settings_file_t() = default;
    ~settings_file_t() = default;
    Q_DISABLE_COPY_MOVE(settings_file_t)

    /// Takes the file for this object until it is destroyed, makes it ("{}") when it is missing,
    /// lets only its owner read it, and checks that it can be read and replaced.
    base::result_t open(const QString& _path);

    /// True when open() found no file and made one.
    bool is_new() const { return created; }

    /// The document as it is on the disk now; a failure when it is not a JSON object.
    base::result_of_t<QJsonObject> read() const;

    /// Replaces the file; returns after the disk has it. After a failure the file is as it was,
    /// unless only the folder could not be brought to the disk.
    /// @param _text a JSON object of at most max_bytes
    base::result_t write(const QByteArray& _text) const;

    QString path() const { return file; }

 private:
    base::result_t lock();
    base::result_t check_writable() const;

    QString file;
    std::unique_ptr<process::file_lock_t> held;
    bool created = false;
};

}  // namespace torlan

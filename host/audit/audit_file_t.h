#pragma once

#include <QByteArray>
#include <QString>

#include "base/result_t.h"

namespace audit {

/// A file of lines that grows at its end, readable for its owner only (mode 0600, whatever the
/// umask), and rotated by size: a bounded number of former ones stays, as of file_name().
///
/// Opened where no other user of the machine can change anything, following no link, and locked
/// against a second writer. What was taken away meanwhile, file or folder, is made anew. One
/// thread.
class audit_file_t {
 public:
    struct settings_t {
        QString folder;  ///< made when it is missing
        QString name;    ///< without ".log"
        qint64 most_bytes = 16 * 1024 * 1024;
        int kept = 9;  ///< former files, 1 at least
    };

    explicit audit_file_t(const settings_t& _settings) : settings(_settings) {}
    Q_DISABLE_COPY_MOVE(audit_file_t)
    ~audit_file_t();

    /// So that a start can say what is wrong; write() does it by itself.
    base::result_t open();

    /// Appends whole lines. After a failure none of them is there, or the file ends in half a line,
    /// which the next write ends.
    base::result_t write(const QByteArray& _lines);

 private:
    base::result_t failed(const QString& _what) const;
    QString path() const;
    bool is_still_there() const;
    base::result_t open_folder();
    base::result_t open_file();
    base::result_t take_over(int _descriptor);
    base::result_t rotate();
    void close();

    const settings_t settings;
    int folder = -1;  ///< descriptors
    int file = -1;
    qint64 size = 0;      ///< of the current file
    bool is_cut = false;  ///< it does not end with a line end
};

}  // namespace audit

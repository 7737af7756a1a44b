#pragma once

#include <QJsonObject>
#include <QString>

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
    ~settings_file_t();
    Q_DISABLE_COPY_MOVE(settings_file_t)

    /// Takes the file for this object until it is destroyed, makes it ("{}") when it is missing,
    /// lets only its owner read it, and checks that it can be read and replaced.
    /// @return empty, or one sentence on what is wrong
    QString open(const QString& _path);

    /// True when open() found no file and made one.
    bool is_new() const { return created; }

    /// The document as it is on the disk now; @p _error becomes one sentence when it is not a
    /// JSON object, otherwise empty.
    QJsonObject read(QString* _error) const;

    /// Replaces the file; returns after the disk has it. Empty, or one sentence on what is wrong;
    /// the file is then as it was, unless only the folder could not be brought to the disk.
    /// @param _text a JSON object of at most max_bytes
    QString write(const QByteArray& _text) const;

    QString path() const { return file; }

 private:
    QString lock();
    QString check_writable() const;

    QString file;
    int lock_descriptor = -1;
    bool created = false;
};

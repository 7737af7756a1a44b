#pragma once

#include <QIODevice>

struct archive;

namespace ets {

/// The bytes of one file in an archive, unpacked as they are asked for. A failure, be it of the
/// file or of a limit, is a read error with a sentence's end in errorString().
class zip_entry_t : public QIODevice {
    Q_OBJECT

 public:
    /// @param _archive stands at the entry, and stays there for as long as this is read
    /// @param _left bytes that may still be unpacked in all; this counts them down
    zip_entry_t(archive* _archive, qint64 _most, qint64* _left);

    bool isSequential() const override { return true; }

    /// Read failed; the words of @ref errorString() say why.
    bool has_failed() const { return failed; }
    /// The entry takes a password, and what was given is none or not the right one.
    bool is_locked() const { return locked; }

 protected:
    qint64 readData(char* _data, qint64 _size) override;
    qint64 writeData(const char*, qint64) override { return -1; }

 private:
    qint64 fail(const QString& _why);

    archive* const source;
    const qint64 most;
    qint64* const left;
    qint64 unpacked = 0;
    bool failed = false;
    bool locked = false;
};

}  // namespace ets

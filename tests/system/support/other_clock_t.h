#pragma once

#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QTemporaryDir>

namespace support {

/// A clock of day for programs that a test starts, which it can set while they run (libfaketime).
/// What measures how long something takes is not touched, as when an administrator sets a clock.
class other_clock_t {
 public:
    other_clock_t() {
        // The broker has an account of its own.
        QFile::setPermissions(
            folder.path(), QFile::Permissions(QFile::ReadOwner | QFile::WriteOwner |
                                              QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther));
        set("+0");
    }

    /// Whether this machine has what it takes.
    static bool is_there() { return !library().isEmpty(); }

    /// Of programs that go by this clock.
    QProcessEnvironment environment() const {
        QProcessEnvironment values = QProcessEnvironment::systemEnvironment();
        values.insert("LD_PRELOAD", library());
        values.insert("FAKETIME_TIMESTAMP_FILE", file());
        values.insert("FAKETIME_CACHE_DURATION", "1");
        values.insert("FAKETIME_DONT_FAKE_MONOTONIC", "1");
        values.insert("NO_FAKE_STAT", "1");
        return values;
    }
    /// So much before or behind the machine's: "-2d", "+2d". Programs see it within a second.
    void set(const QByteArray& _offset) const {
        QFile written(file());
        if (written.open(QIODevice::WriteOnly)) {
            written.write(_offset + '\n');
        }
    }

 private:
    QString file() const { return folder.filePath("clock"); }
    static QString library() {
        // Debian has a folder for each architecture.
        const QStringList places = QDir("/usr/lib").entryList({"*-linux-*"}, QDir::Dirs);
        for (const QString& place : places) {
            const QString path = "/usr/lib/" + place + "/faketime/libfaketimeMT.so.1";
            if (QFile::exists(path)) {
                return path;
            }
        }
        return {};
    }

    QTemporaryDir folder;
};

}  // namespace support

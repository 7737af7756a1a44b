#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "installation/installation_t.h"
#include "kit/small_home.h"
#include "store/sqlite_store_t.h"

/// What one call of the program left behind.
struct call_t {
    int status = -1;  ///< -1: it did not start, crashed or hung
    QString output;
    QString error;  ///< standard error without its line end
};

/// The real program on a data folder of its own.
class torlanctl_t {
 public:
    QString data() const { return folder.path(); }

    /// Runs "torlanctl --data <folder> ...".
    call_t operator()(const QStringList& _arguments, const QByteArray& _input = {}) const {
        return run(QStringList{"--data", data()} + _arguments, _input);
    }

    static call_t run(const QStringList& _arguments, const QByteArray& _input = {}) {
        QProcess process;
        process.start(QStringLiteral(TORLANCTL), _arguments);
        process.write(_input);
        process.closeWriteChannel();
        if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit) {
            return {};
        }
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError()).trimmed()};
    }

    /// Writes a file into the folder and returns its path.
    QString write(const QString& _name, const QByteArray& _bytes) const {
        QFile file(folder.filePath(_name));
        return file.open(QIODevice::WriteOnly) && file.write(_bytes) == _bytes.size()
                   ? file.fileName()
                   : QString();
    }

    /// What a host would read from the folder.
    database::installation::installation_t stored() const {
        database::store::sqlite_store_t store;
        database::installation::installation_t unreadable;
        unreadable.topic = "unreadable";
        if (!store.open(folder.filePath("installation.db")).is_ok()) {
            return unreadable;
        }
        const auto installation = store.read();
        return installation.is_ok() ? installation.value : unreadable;
    }

    call_t import_small_home() const {
        return (*this)({"import", write("small.json", kit::small_home_text())});
    }

 private:
    QTemporaryDir folder;
};

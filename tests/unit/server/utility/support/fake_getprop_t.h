#pragma once

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// A `getprop` of the test's own, first in PATH from construction to destruction. Each answer is
/// a piece of shell script; a property without one fails with a non-zero exit.
class fake_getprop_t {
 public:
    fake_getprop_t() : path_before(qgetenv("PATH")) {
        write(QStringLiteral("getprop"), "#!/bin/sh\necho \"$@\" >> \"$0.calls\"\n. \"$0.$1\"\n");
        QFile(folder.filePath(QStringLiteral("getprop")))
            .setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        qputenv("PATH", folder.path().toUtf8() + ':' + path_before);
    }
    ~fake_getprop_t() { qputenv("PATH", path_before); }
    Q_DISABLE_COPY_MOVE(fake_getprop_t)

    /// What the property's run executes: "echo it-IT", "exit 3", "exec sleep 3".
    void answer(const char* _property, const QByteArray& _script) {
        write(QStringLiteral("getprop.") + QLatin1String(_property), _script + '\n');
    }

    /// The facts of a device that answers everything.
    void answer_all() {
        answer("persist.sys.locale", "echo it-IT");
        answer("ro.product.manufacturer", "echo Acme");
        answer("ro.product.brand", "echo Lunora");
        answer("ro.build.display.id", "echo image-1.2-3");
    }

    /// No getprop at all: PATH holds an empty folder only.
    void take_away() { qputenv("PATH", empty.path().toUtf8()); }

    /// The arguments of every run so far, one line each.
    QByteArrayList calls() const {
        QFile file(folder.filePath(QStringLiteral("getprop.calls")));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().split('\n')
                                              : QByteArrayList();
    }

 private:
    void write(const QString& _name, const QByteArray& _content) {
        QFile file(folder.filePath(_name));
        const bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                             file.write(_content) == _content.size();
        QVERIFY2(written, qPrintable(file.errorString()));
    }

    QTemporaryDir folder;
    QTemporaryDir empty;
    QByteArray path_before;
};

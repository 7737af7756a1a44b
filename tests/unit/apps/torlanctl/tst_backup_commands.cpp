#include <QDir>
#include <QTest>

#include "process/file_lock_t.h"
#include "unit/apps/torlanctl/torlanctl_t.h"

class tst_backup_commands : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        torlanctl = std::make_unique<torlanctl_t>();
        QCOMPARE(torlanctl->import_small_home().status, 0);
        torlanctl->write("settings.json", "{\"a\":1}");
    }

    void restored_is_what_was_backed_up() {
        const auto before = torlanctl->stored();
        QCOMPARE((*torlanctl)({"backup", file("copy")}).error, QString());
        QCOMPARE((*torlanctl)({"element", "remove", "e-lamp"}).error, QString());
        torlanctl->write("settings.json", "{}");
        const call_t call = (*torlanctl)({"restore", file("copy")});
        QCOMPARE(call.error, QString());
        QCOMPARE(call.status, 0);
        QVERIFY(torlanctl->stored() == before);
        QCOMPARE(text("settings.json"), "{\"a\":1}");
        QVERIFY(QDir(torlanctl->data()).entryList({"restore*"}).isEmpty());
    }

    void refused_file_changes_nothing() {
        const auto before = torlanctl->stored();
        torlanctl->write("other", QByteArray(5'000, 'x'));
        QCOMPARE((*torlanctl)({"restore", file("other")}).status, 1);
        QCOMPARE((*torlanctl)({"restore", file("none")}).error,
                 "torlanctl: There is no file " + file("none") + '.');
        QVERIFY(torlanctl->stored() == before);
        QCOMPARE(text("settings.json"), "{\"a\":1}");
        QVERIFY(QDir(torlanctl->data()).entryList({"restore*"}).isEmpty());
    }

    void folder_in_use_is_refused_data() {
        QTest::addColumn<QString>("lock");
        for (const char* const name : {"torlan.lock", "supervisor.lock", "settings.json.lock"}) {
            QTest::newRow(name) << name;
        }
    }
    void folder_in_use_is_refused() {
        QFETCH(QString, lock);
        QCOMPARE((*torlanctl)({"backup", file("copy")}).status, 0);
        process::file_lock_t holder(torlanctl->data() + '/' + lock);
        QCOMPARE(holder.take(), process::file_lock_t::state_t::ours);
        const call_t call = (*torlanctl)({"restore", file("copy")});
        QCOMPARE(call.status, 1);
        QVERIFY2(call.error.contains(" is in use by process "), qPrintable(call.error));
    }

    void killed_restoration_is_finished_by_the_next_command() {
        QCOMPARE((*torlanctl)({"backup", file("copy")}).status, 0);
        QCOMPARE((*torlanctl)({"restore", file("copy")}).status, 0);
        // As a kill right behind the commit leaves it.
        QVERIFY(QDir(torlanctl->data()).mkdir("restore.committed"));
        QVERIFY(QFile::rename(file("installation.db"), file("restore.committed/installation.db")));
        torlanctl->write("installation.db", "");
        torlanctl->write("restore.committed/settings.json", "{\"b\":2}");
        QCOMPARE((*torlanctl)({"user", "list"}).output.section(QChar('\n'), 0, 0).left(5), "alice");
        QCOMPARE(text("settings.json"), "{\"b\":2}");
    }

 private:
    QString file(const char* _name) const { return torlanctl->data() + '/' + _name; }
    QString text(const char* _name) const {
        QFile opened(file(_name));
        return opened.open(QIODevice::ReadOnly) ? QString::fromUtf8(opened.readAll()) : QString();
    }

    std::unique_ptr<torlanctl_t> torlanctl;
};

QTEST_GUILESS_MAIN(tst_backup_commands)
#include "tst_backup_commands.moc"

#include "installation_import_t.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "store/sqlite_store_t.h"

using torlan::installation_import_t;

class tst_installation_import_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() { place = std::make_unique<QTemporaryDir>(); }

    void a_file_is_written_as_a_whole() {
        installation_import_t import;
        QCOMPARE(import.read(document(R"("type": 1)"), database()).error, QString());
        QCOMPARE(import.write(database()).error, QString());
        database::store::sqlite_store_t store;
        QVERIFY(store.open(database()).is_ok());
        const auto written = store.read();
        QCOMPARE(written.error, QString());
        QCOMPARE(written.value.elements.keys(), QStringList("e-lamp"));
    }

    void a_broken_file_names_its_place_and_writes_nothing() {
        installation_import_t import;
        const QString error = import.read(document(R"("type": "x")"), database()).error;
        QVERIFY2(error.contains("elements/e-lamp/type"), qPrintable(error));
        QCOMPARE(import.write(database()).error, QString());
        QVERIFY(!QFile::exists(database()));
    }

    void the_same_password_keeps_its_hash() {
        QCOMPARE(import_once(), QString());
        const QString first = hash_of_alice();
        QVERIFY(first.startsWith("$7$"));
        QCOMPARE(import_once(), QString());
        QCOMPARE(hash_of_alice(), first);
    }

    void clear_text_passwords_are_known_and_hashes_are_not() {
        installation_import_t import;
        QCOMPARE(import.read(document(R"("type": 1)"), database()).error, QString());
        QCOMPARE(import.password_of("u-a"), QStringLiteral("secret"));
        QCOMPARE(import.password_of("u-b"), QString());
        QCOMPARE(import.password_of("u-c"), QString());
    }

 private:
    QString database() const { return place->filePath("installation.db"); }

    QString import_once() const {
        installation_import_t import;
        const QString error = import.read(document(R"("type": 1)"), database()).error;
        return error.isEmpty() ? import.write(database()).error : error;
    }

    QString hash_of_alice() const {
        database::store::sqlite_store_t store;
        return store.open(database()).is_ok() ? store.read().value.users["u-a"].password_hash
                                              : QString();
    }

    QString document(const QByteArray& _type) const {
        const QString path = place->filePath("file.json");
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(R"({"topic": "installation/1", "items": {"i-lamp": {"value": "0"}},
                "scenarios": {}, "thermostats": {}, "elements": {"e-lamp": {"name": "Lamp", )" +
                       _type + R"(, "flags": 0, "functions": {"execute": "i-lamp"}}},
                "users": {"u-a": {"username": "alice", "password": "secret"},
                          "u-b": {"username": "bob", "password": "$7$101$)" +
                       QByteArray(16, 'A').append("$").append(QByteArray(86, 'A')) + R"(=="}},
                "permissions": {}})");
        }
        return path;
    }

    std::unique_ptr<QTemporaryDir> place;
};

QTEST_GUILESS_MAIN(tst_installation_import_t)
#include "tst_installation_import_t.moc"

#include "audit/access_entries.h"

#include <QTest>

#include "audit/line_text.h"

using accounts::broker_account_t;
using audit::entry_t;

namespace {

/// "user|operation|result|detail" of each.
QStringList short_texts(const QList<entry_t>& _entries) {
    QStringList texts;
    for (const entry_t& entry : _entries) {
        texts.append(
            QStringList{entry.user, entry.operation, entry.result, entry.detail}.join('|'));
    }
    return texts;
}

const broker_account_t alice{"alice", "hash-a", "u-1"};
const broker_account_t bob{"bob", "hash-b", "u-2"};

}  // namespace

class tst_access_entries : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void accounts_data() {
        QTest::addColumn<QList<broker_account_t>>("before");
        QTest::addColumn<QList<broker_account_t>>("after");
        QTest::addColumn<QStringList>("texts");
        using list_t = QList<broker_account_t>;
        QTest::newRow("nothing") << list_t{alice, bob} << list_t{bob, alice} << QStringList();
        QTest::newRow("added") << list_t{alice} << list_t{alice, bob}
                               << QStringList{"bob|user|added|"};
        QTest::newRow("removed") << list_t{alice, bob} << list_t{bob}
                                 << QStringList{"alice|user|removed|"};
        QTest::newRow("another password") << list_t{alice} << list_t{{"alice", "hash-x", "u-1"}}
                                          << QStringList{"alice|password|changed|"};
        QTest::newRow("renamed") << list_t{alice} << list_t{{"anna", "hash-a", "u-1"}}
                                 << QStringList{"anna|user|renamed|was alice"};
        QTest::newRow("both") << list_t{alice} << list_t{{"anna", "hash-x", "u-1"}}
                              << QStringList{"anna|user|renamed|was alice",
                                             "anna|password|changed|"};
        QTest::newRow("made again") << list_t{alice} << list_t{{"alice", "hash-a", "u-9"}}
                                    << QStringList{"alice|user|removed|", "alice|user|added|"};
    }
    void accounts() {
        QFETCH(QList<broker_account_t>, before);
        QFETCH(QList<broker_account_t>, after);
        QFETCH(QStringList, texts);
        const QList<entry_t> entries = audit::account_entries(before, after, 7);
        QCOMPARE(short_texts(entries), texts);
        for (const entry_t& entry : entries) {
            QCOMPARE(entry.by, QString("database"));
            QCOMPARE(entry.time, qint64(7));
            QVERIFY(!audit::line_of(entry).contains("hash"));
        }
    }

    void a_grant_tells_before_and_after() {
        const entry_t entry = audit::grant_entry({"bob", "e-lamp", 3, 1}, 7);
        QCOMPARE(entry.user, QString("bob"));
        QCOMPARE(entry.by, QString("database"));
        QCOMPARE(entry.operation, QString("grant"));
        QCOMPARE(entry.element, QString("e-lamp"));
        QCOMPARE(entry.value, QString("read"));
        QCOMPARE(entry.detail, QString("was readwrite"));
        QCOMPARE(audit::grant_entry({"bob", "e-lamp", 2, 0}, 7).value, QString("deny"));
    }
};

QTEST_GUILESS_MAIN(tst_access_entries)
#include "tst_access_entries.moc"

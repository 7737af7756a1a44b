#include "audit/repeats_t.h"

#include <QTest>

#include "audit/line_text.h"

using audit::entry_t;
using audit::repeats_t;

namespace {

constexpr qint64 begin = 1'795'327'842'123;
constexpr qint64 minute = 60'000;
constexpr qint64 day = 86'400'000;

entry_t made(const QString& _user, const QString& _operation, const QString& _element,
             const QString& _result, qint64 _after = 0) {
    entry_t entry;
    entry.time = begin + _after;
    entry.user = _user;
    entry.operation = _operation;
    entry.element = _element;
    entry.result = _result;
    return entry;
}

QList<entry_t> entries_of(const QByteArray& _text) {
    QList<entry_t> entries;
    for (const QByteArray& line : _text.split('\n')) {
        if (const auto entry = audit::entry_of(line)) {
            entries.append(*entry);
        }
    }
    return entries;
}

}  // namespace

class tst_repeats_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_first_is_a_line_at_once() {
        repeats_t repeats({});
        const entry_t entry = made("alice", "write", "e-lamp", "202");
        QCOMPARE(repeats.take(entry), audit::line_of(entry));
        QCOMPARE(repeats.settle(begin + minute), QByteArray());
    }

    void the_same_again_is_one_line_a_minute_for_as_long_as_it_goes_on() {
        repeats_t repeats({});
        for (int i = 0; i < 6'000; ++i) {
            QCOMPARE(repeats.take(made("alice", "read", "", "ok", i * 10)).isEmpty(), i > 0);
        }
        QList<entry_t> told = entries_of(repeats.settle(begin + minute));
        QCOMPARE(told.size(), 1);
        QCOMPARE(told[0].count, qint64(5'999));
        QCOMPARE(told[0].since, begin + 10);
        QCOMPARE(told[0].time, begin + 59'990);
        QCOMPARE(told[0].operation, QString("read"));
        for (int i = 0; i < 100; ++i) {
            QVERIFY(repeats.take(made("alice", "read", "", "ok", minute + i)).isEmpty());
        }
        told = entries_of(repeats.settle(begin + 2 * minute));
        QCOMPARE(told.size(), 1);
        QCOMPARE(told[0].count, qint64(100));
        QCOMPARE(told[0].since, begin + minute);
        QCOMPARE(repeats.settle(begin + 3 * minute), QByteArray());
        QVERIFY(!repeats.take(made("alice", "read", "", "ok", 4 * minute)).isEmpty());
    }

    void one_more_is_told_as_it_is() {
        repeats_t repeats({});
        entry_t first = made("alice", "write", "e-lamp", "202");
        first.value = "1";
        entry_t second = made("alice", "write", "e-lamp", "202", 5);
        second.value = "0";
        second.uuid = "u2";
        QVERIFY(!repeats.take(first).isEmpty());
        QVERIFY(repeats.take(second).isEmpty());
        QCOMPARE(repeats.settle(begin + minute), audit::line_of(second));
    }

    void what_counts_as_the_same_data() {
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("same");
        for (const char* field :
             {"user", "client", "address", "by", "operation", "element", "function", "result"}) {
            QTest::newRow(field) << field << false;
        }
        for (const char* field : {"called", "value", "detail", "uuid"}) {
            QTest::newRow(field) << field << true;
        }
    }
    void what_counts_as_the_same() {
        QFETCH(QString, field);
        QFETCH(bool, same);
        repeats_t repeats({});
        const entry_t first = made("alice", "write", "e-lamp", "202");
        static_cast<void>(repeats.take(first));
        const QHash<QString, QString entry_t::*> fields{
            {"user", &entry_t::user},           {"client", &entry_t::client},
            {"address", &entry_t::address},     {"by", &entry_t::by},
            {"operation", &entry_t::operation}, {"element", &entry_t::element},
            {"function", &entry_t::function},   {"result", &entry_t::result},
            {"called", &entry_t::called},       {"value", &entry_t::value},
            {"detail", &entry_t::detail},       {"uuid", &entry_t::uuid}};
        entry_t other = first;
        other.*fields[field] = "other";
        QCOMPARE(repeats.take(other).isEmpty(), same);
    }

    void every_other_value_of_a_grant_is_told() {
        repeats_t repeats({});
        entry_t entry = made("alice", "grant", "e-lamp", "changed");
        entry.by = "database";
        for (const char* value : {"read", "deny", "write"}) {
            entry.value = value;
            QVERIFY(!repeats.take(entry).isEmpty());
        }
    }

    void owner_data() {
        QTest::addColumn<entry_t>("entry");
        QTest::addColumn<QString>("owner");
        QTest::addColumn<bool>("outsider");
        entry_t setting = made("", "setting", "", "200");
        setting.by = "system user 7";
        entry_t grant = made("alice", "grant", "e", "changed");
        grant.by = "database";
        QTest::newRow("a read") << made("alice", "read", "", "ok") << "alice/reads" << false;
        QTest::newRow("a refused read")
            << made("alice", "read", "", "401") << "alice/reads" << false;
        QTest::newRow("a write") << made("alice", "write", "e", "202") << "alice/writes" << false;
        QTest::newRow("a refused write")
            << made("alice", "write", "e", "401") << "alice/other" << false;
        QTest::newRow("a sign-in") << made("alice", "sign-in", "", "ok") << "alice/other" << false;
        QTest::newRow("a failure, as whomever")
            << made("alice", "sign-in", "", "failed") << "/strangers" << true;
        QTest::newRow("a grant") << grant << "/database" << true;
        QTest::newRow("a setting") << setting << "/system user 7" << true;
        QTest::newRow("nobody") << made("", "start", "", "") << "/" << true;
    }
    void owner() {
        QFETCH(entry_t, entry);
        QFETCH(QString, owner);
        QFETCH(bool, outsider);
        QCOMPARE(audit::owner_of(entry), owner);
        QCOMPARE(audit::is_outsider(owner), outsider);
    }

    void a_flood_of_different_things_is_few_lines_and_hides_no_others() {
        repeats_t repeats({});
        QByteArray text;
        for (int i = 0; i < 5'000; ++i) {
            text += repeats.take(made("mallory", "write", QString("e-%1").arg(i), "401", i));
        }
        QCOMPARE(text.count('\n'), qsizetype(120));
        QVERIFY(!repeats.take(made("bob", "write", "e-door", "202", 6'000)).isEmpty());
        // Nor what the same user did, in the midst of it.
        QVERIFY(!repeats.take(made("mallory", "write", "e-door", "202", 6'000)).isEmpty());
        QVERIFY(!repeats.take(made("mallory", "read", "", "ok", 6'000)).isEmpty());
        const QList<entry_t> rest = entries_of(repeats.settle(begin + minute));
        QCOMPARE(rest.size(), 1);
        QCOMPARE(rest[0].user, QString("mallory"));
        QCOMPARE(rest[0].operation, QString("write"));
        QCOMPARE(rest[0].result, QString("401"));
        QCOMPARE(rest[0].count, qint64(4'880));
        QVERIFY(rest[0].element.isEmpty());
    }

    void the_rest_of_many_kinds_is_one_line_too() {
        repeats_t repeats({.lines_a_minute = 1});
        static_cast<void>(repeats.take(made("mallory", "write", "e", "400")));
        for (int i = 0; i < 100; ++i) {
            QVERIFY(repeats.take(made("mallory", "write", "e", QString::number(i))).isEmpty());
        }
        const QList<entry_t> rest = entries_of(repeats.settle(begin + minute));
        QCOMPARE(rest.size(), 5);
        qint64 count = 0;
        for (const entry_t& entry : rest) {
            count += entry.count;
        }
        QCOMPARE(count, qint64(100));
    }

    void strangers_share_what_one_owner_has() {
        repeats_t repeats({.lines_a_minute = 10});
        int lines = 0;
        for (int i = 0; i < 100; ++i) {
            lines +=
                int(repeats.take(made(QString("n%1").arg(i), "sign-in", "", "failed")).count('\n'));
        }
        QCOMPARE(lines, 10);
        QVERIFY(!repeats.take(made("n50", "sign-in", "", "ok")).isEmpty());
    }

    void a_day_has_so_many_bytes() {
        repeats_t repeats({.bytes_a_day = 1'000});
        QByteArray text;
        const auto go_on = [&](qint64 _from, int _first) {
            text.clear();
            for (int i = 0; i < 100; ++i) {
                text += repeats.take(
                    made("mallory", "write", QString("e-%1").arg(_first + i), "202", _from));
            }
        };
        static_cast<void>(repeats.settle(begin));
        go_on(0, 0);
        QVERIFY(text.size() >= 1'000 && text.size() < 1'200);
        const QList<entry_t> rest = entries_of(repeats.settle(begin + minute));
        QCOMPARE(rest.size(), 1);
        go_on(minute, 100);
        QCOMPARE(text, QByteArray());
        QVERIFY(!repeats.take(made("bob", "write", "e", "202", minute)).isEmpty());
        static_cast<void>(repeats.settle(begin + day));
        go_on(day, 200);
        QVERIFY(!text.isEmpty());
    }

    void all_owners_together_are_bounded() {
        repeats_t repeats({.lines_a_minute = 10, .lines_of_all = 30, .owners = 5});
        QByteArray text;
        for (int user = 0; user < 100; ++user) {
            for (int i = 0; i < 10; ++i) {
                text += repeats.take(
                    made(QString("u%1").arg(user), "write", QString::number(i), "202"));
            }
        }
        QCOMPARE(text.count('\n'), qsizetype(30));
        QVERIFY(entries_of(repeats.settle(begin + minute)).size() <= 6 * 5);
        // What has ended leaves its place.
        QVERIFY(!repeats.take(made("bob", "write", "e", "202", minute)).isEmpty());
    }

    void lines_about_what_was_counted_are_in_order() {
        repeats_t repeats({});
        for (int i = 0; i < 50; ++i) {
            for (int turn = 0; turn < 2; ++turn) {
                static_cast<void>(repeats.take(
                    made(QString("u%1").arg(i % 7), "read", QString::number(i), "ok", i * 3)));
            }
        }
        qint64 last = 0;
        const QList<entry_t> told = entries_of(repeats.settle(begin + minute));
        QCOMPARE(told.size(), 50);
        for (const entry_t& entry : told) {
            QVERIFY(entry.time >= last);
            last = entry.time;
        }
    }
};

QTEST_GUILESS_MAIN(tst_repeats_t)
#include "tst_repeats_t.moc"

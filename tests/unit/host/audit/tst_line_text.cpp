#include "audit/line_text.h"

#include <QTest>

using audit::entry_t;

namespace {

constexpr qint64 moment = 1'795'327'842'123;  // 2026-11-22T06:10:42.123Z

entry_t whole() {
    return {.time = moment,
            .since = moment - 60'000,
            .count = 7,
            .user = "alice",
            .client = "phone",
            .called = "me",
            .address = "127.0.0.1",
            .by = "database",
            .operation = "write",
            .element = "e-lamp",
            .function = "execute",
            .value = "1",
            .result = "202",
            .detail = "done",
            .uuid = "u1"};
}

}  // namespace

class tst_line_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_line_says_everything_in_one_order() {
        QCOMPARE(audit::line_of(whole()),
                 QByteArray(R"({"time":"2026-11-22T06:10:42.123Z",)"
                            R"("since":"2026-11-22T06:09:42.123Z","count":7,"user":"alice",)"
                            R"("client":"phone","called":"me","address":"127.0.0.1",)"
                            R"("by":"database","operation":"write","element":"e-lamp",)"
                            R"("function":"execute","value":"1","result":"202","detail":"done",)"
                            R"("uuid":"u1"})"
                            "\n"));
    }

    void what_is_not_known_is_left_out() {
        entry_t entry;
        entry.time = moment;
        entry.operation = "start";
        QCOMPARE(audit::line_of(entry),
                 QByteArray(R"({"time":"2026-11-22T06:10:42.123Z","operation":"start"})"
                            "\n"));
    }

    void a_line_can_be_read_back() {
        const auto read = audit::entry_of(audit::line_of(whole()));
        QVERIFY(read.has_value());
        QCOMPARE(*read == whole(), true);
    }

    void odd_texts_come_back_and_stay_on_one_line_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("a line end") << "a\nb\r\n";
        QTest::newRow("a forged line") << "x\"}\n{\"time\":\"";
        QTest::newRow("a backslash") << "\\u0041\\";
        QTest::newRow("an escape") << "\x1b[2J";
        QTest::newRow("control characters above") << QString(QChar(0x9b)) + QChar(0x7f);
        QTest::newRow("line separators") << QString(QChar(0x2028)) + QChar(0x2029);
        QTest::newRow("NUL") << QString(QChar(0)) + "x";
        QTest::newRow("far away") << QString::fromUtf8("\xf0\x9f\x92\xa1 \xc3\xa9");
    }
    void odd_texts_come_back_and_stay_on_one_line() {
        QFETCH(QString, text);
        entry_t entry = whole();
        entry.value = text;
        const QByteArray line = audit::line_of(entry);
        QCOMPARE(line.count('\n'), 1);
        for (const char letter : line.chopped(1)) {
            QVERIFY(uchar(letter) >= 0x20 && letter != 0x7f);
        }
        QVERIFY(!line.contains("\xc2\x9b"));
        QVERIFY(!line.contains("\xe2\x80\xa8"));
        const auto read = audit::entry_of(line);
        QVERIFY(read.has_value());
        QCOMPARE(read->value, text);
    }

    void half_a_character_is_no_character() {
        entry_t entry = whole();
        entry.value = QString(QChar(0xd800)) + "x";
        QVERIFY(audit::entry_of(audit::line_of(entry)).has_value());
    }

    void long_texts_are_cut() {
        entry_t entry = whole();
        entry.value = QString(5'000, 'v');
        entry.uuid = QString(audit::max_text, 'u');
        const auto read = audit::entry_of(audit::line_of(entry));
        QVERIFY(read.has_value());
        QCOMPARE(read->value, QString(audit::max_text, 'v') + QChar(0x2026));
        QCOMPARE(read->uuid, entry.uuid);
    }

    void a_line_is_bounded_whatever_its_texts_are() {
        entry_t entry = whole();
        for (QString entry_t::*field :
             {&entry_t::user, &entry_t::client, &entry_t::called, &entry_t::address, &entry_t::by,
              &entry_t::operation, &entry_t::element, &entry_t::function, &entry_t::value,
              &entry_t::result, &entry_t::detail, &entry_t::uuid}) {
            entry.*field = QString(100'000, QChar(1));
        }
        QVERIFY(audit::line_of(entry).size() < 10'000);
    }

    void what_is_no_line_is_nothing_data() {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("half a line") << audit::line_of(whole()).left(60);
        QTest::newRow("zeros, as after a power cut") << QByteArray(100, '\0');
        QTest::newRow("an array") << QByteArray("[1]\n");
        QTest::newRow("without a time") << QByteArray(R"({"operation":"read"})");
        QTest::newRow("a time that is none") << QByteArray(R"({"time":"x","operation":"read"})");
        QTest::newRow("without an operation")
            << QByteArray(R"({"time":"2026-11-22T06:10:42.123Z"})");
    }
    void what_is_no_line_is_nothing() {
        QFETCH(QByteArray, line);
        QVERIFY(!audit::entry_of(line).has_value());
    }
};

QTEST_GUILESS_MAIN(tst_line_text)
#include "tst_line_text.moc"

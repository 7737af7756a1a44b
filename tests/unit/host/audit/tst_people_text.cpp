#include "audit/people_text.h"

#include <QTest>

using audit::entry_t;

class tst_people_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void text_data() {
        constexpr qint64 now = 1'795'327'842'123;
        const QString time = "2026-11-22T06:10:42.123Z  ";
        QTest::addColumn<entry_t>("entry");
        QTest::addColumn<QString>("text");
        QTest::newRow("a write")
            << entry_t{.time = now,
                       .user = "alice",
                       .called = "me",
                       .operation = "write",
                       .element = "e-lamp",
                       .function = "execute",
                       .value = "1",
                       .result = "202",
                       .uuid = "u1"}
            << time + "alice  write e-lamp execute = \"1\": 202 (calls itself \"me\", uuid \"u1\")";
        QTest::newRow("a refusal") << entry_t{.time = now,
                                              .user = "bob",
                                              .operation = "read",
                                              .element = "e-lamp",
                                              .result = "401",
                                              .detail = "Unauthorized"}
                                   << time + "bob  read e-lamp: 401 (\"Unauthorized\")";
        QTest::newRow("a wrong password")
            << entry_t{.time = now,
                       .user = "x y",
                       .client = "c",
                       .address = "127.0.0.1",
                       .operation = "sign-in",
                       .result = "failed",
                       .detail = "password"}
            << time + "\"x y\"  sign-in: failed (\"password\", client \"c\", from \"127.0.0.1\")";
        QTest::newRow("a grant")
            << entry_t{.time = now,
                       .user = "bob",
                       .by = "database",
                       .operation = "grant",
                       .element = "e-lamp",
                       .value = "deny",
                       .result = "changed",
                       .detail = "was read"}
            << time + "bob  grant e-lamp = \"deny\": changed (\"was read\", by the \"database\")";
        QTest::newRow("many") << entry_t{.time = now,
                                         .since = now - 123,
                                         .count = 42,
                                         .user = "bob",
                                         .operation = "read",
                                         .result = "ok"}
                              << time + "bob  read: ok (42 times since 2026-11-22T06:10:42.000Z)";
        QTest::newRow("nobody") << entry_t{.time = now, .operation = "start"} << time + "-  start";
        QTest::newRow("what steers a terminal")
            << entry_t{.time = now, .user = "\x1b[2J", .operation = "sign\n", .result = "\r"}
            << time + "\"?[2J\"  sign?: ?";
    }
    void text() {
        QFETCH(entry_t, entry);
        QTEST(audit::people_text(entry), "text");
    }
};

QTEST_GUILESS_MAIN(tst_people_text)
#include "tst_people_text.moc"

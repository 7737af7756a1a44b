#include "settings_path_t.h"

#include <QTest>

using namespace torlan;

class tst_settings_path_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void path_becomes_keys_data();
    void path_becomes_keys();
    void other_paths_are_refused_data();
    void other_paths_are_refused();
    void limits_are_exact();
};

void tst_settings_path_t::path_becomes_keys_data() {
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QStringList>("keys");
    QTest::newRow("root") << QByteArray("/") << QStringList();
    QTest::newRow("one") << QByteArray("/a") << QStringList{"a"};
    QTest::newRow("two") << QByteArray("/installation/installation_id")
                         << QStringList{"installation", "installation_id"};
    QTest::newRow("slash at the end") << QByteArray("/a/b/") << QStringList{"a", "b"};
    QTest::newRow("encoded") << QByteArray("/a%20b/%C3%bc")
                             << QStringList{"a b", QString(QChar(0xfc))};
    QTest::newRow("encoded percent") << QByteArray("/%2541") << QStringList{"%41"};
    QTest::newRow("plus is a plus") << QByteArray("/a+b") << QStringList{"a+b"};
    QTest::newRow("dots in a key") << QByteArray("/a..b/...") << QStringList{"a..b", "..."};
}

void tst_settings_path_t::path_becomes_keys() {
    QFETCH(QByteArray, path);
    QFETCH(QStringList, keys);
    const settings_path_t parsed = settings_path_t::parse(path);
    QCOMPARE(parsed.refusal.status, 0);
    QCOMPARE(parsed.keys, keys);
}

void tst_settings_path_t::other_paths_are_refused_data() {
    QTest::addColumn<QByteArray>("path");
    for (const char* path : {"",
                             "a",
                             "*",
                             "//",
                             "//a",
                             "/a//b",
                             "/a//",
                             "/..",
                             "/../a",
                             "/a/../b",
                             "/a/..",
                             "/./a",
                             "/a/%2e%2e/b",
                             "/a/.%2E",
                             "/a%00b",
                             "/%00",
                             "/a%0Ab",
                             "/a%7f",
                             "/a%2fb",
                             "/%c3",
                             "/%ff%fe",
                             "/%",
                             "/%4",
                             "/%zz",
                             "/a b",
                             "/a\tb",
                             "/\xc3\xbc",
                             "/a#b",
                             "http://127.0.0.1/a"}) {
        QTest::newRow(*path == '\0' ? "empty" : path) << QByteArray(path);
    }
    QTest::newRow("zero byte") << QByteArray("/a\0b", 4);
}

void tst_settings_path_t::other_paths_are_refused() {
    QFETCH(QByteArray, path);
    const settings_path_t parsed = settings_path_t::parse(path);
    QCOMPARE(parsed.refusal.status, 400);
    QVERIFY(!parsed.refusal.message.isEmpty());
    QVERIFY(parsed.keys.isEmpty());
}

void tst_settings_path_t::limits_are_exact() {
    const QByteArray key(settings_path_t::max_key_length, 'k');
    QCOMPARE(settings_path_t::parse('/' + key).refusal.status, 0);
    QCOMPARE(settings_path_t::parse('/' + key + 'k').refusal.status, 400);

    const QByteArray deep = QByteArray("/a").repeated(settings_path_t::max_depth);
    QCOMPARE(settings_path_t::parse(deep).keys.size(), settings_path_t::max_depth);
    QCOMPARE(settings_path_t::parse(deep + '/').refusal.status, 0);
    QCOMPARE(settings_path_t::parse(deep + "/a").refusal.status, 400);

    const QByteArray longest = ('/' + QByteArray(127, 'k')).repeated(16);
    QCOMPARE(longest.size(), settings_path_t::max_bytes);
    QCOMPARE(settings_path_t::parse(longest).refusal.status, 0);
    QCOMPARE(settings_path_t::parse(longest + 'k').refusal.status, 414);
}

QTEST_GUILESS_MAIN(tst_settings_path_t)
#include "tst_settings_path_t.moc"

#include "broker/plugin/stored_hash_t.h"

#include <QCryptographicHash>
#include <QTest>

#include "broker/plugin/base64.h"
#include "broker/plugin/digest_maker_t.h"
#include "broker/plugin/password_key_t.h"
#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace broker::plugin;

namespace {

const QByteArray salt = "MDEyMzQ1Njc4OWFi";
const QByteArray full = QByteArray(64, 'h').toBase64();

bool matches(const QByteArray& _hash, const QByteArray& _password) {
    const auto parsed = stored_hash_t::parse(_hash.constData());
    return parsed &&
           parsed->matches(password_key_t({_password.constData(), std::size_t(_password.size())}));
}

}  // namespace

class tst_stored_hash_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void form_data();
    void form();
    void password_matches_its_hash_data();
    void password_matches_its_hash();
    void password_longer_than_a_block_is_kept_short();
    void decoy_matches_nothing_and_costs_as_much();
    void digest_tells_names_and_passwords_apart();
    void base64_data();
    void base64();
};

void tst_stored_hash_t::form_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("good");
    const auto row = [](const char* _name, const QByteArray& _text, bool _good) {
        QTest::newRow(_name) << _text << _good;
    };
    row("usual", "$7$1000$" + salt + "$" + full, true);
    row("one iteration", "$7$1$" + salt + "$" + full, true);
    row("most iterations", "$7$9999999$" + salt + "$" + full, true);
    row("too many", "$7$10000000$" + salt + "$" + full, false);
    row("far too many", "$7$99999999999999999999$" + salt + "$" + full, false);
    row("none", "$7$0$" + salt + "$" + full, false);
    row("leading zero", "$7$01$" + salt + "$" + full, false);
    row("negative", "$7$-1$" + salt + "$" + full, false);
    row("sign", "$7$+1$" + salt + "$" + full, false);
    row("no number", "$7$x$" + salt + "$" + full, false);
    row("empty number", "$7$$" + salt + "$" + full, false);
    row("other kind", "$6$" + salt + "$" + full, false);
    row("no salt", "$7$10$$" + full, false);
    row("long salt", "$7$10$" + QByteArray(65, 's').toBase64() + "$" + full, false);
    row("salt is no base 64", "$7$10$!!!!$" + full, false);
    row("short hash", "$7$10$" + salt + "$" + QByteArray(63, 'h').toBase64(), false);
    row("long hash", "$7$10$" + salt + "$" + QByteArray(65, 'h').toBase64(), false);
    row("no hash", "$7$10$" + salt + "$", false);
    row("hash missing", "$7$10$" + salt, false);
    row("more behind", "$7$10$" + salt + "$" + full + "$x", false);
    row("blank behind", "$7$10$" + salt + "$" + full + " ", false);
    row("clear text", "secret", false);
    row("empty", "", false);
}

void tst_stored_hash_t::form() {
    QFETCH(QByteArray, text);
    QTEST(stored_hash_t::parse(text.constData()).has_value(), "good");
}

void tst_stored_hash_t::password_matches_its_hash_data() {
    QTest::addColumn<QByteArray>("password");
    QTest::newRow("short") << QByteArray("pw");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("as long as a block") << QByteArray(128, 'b');
    QTest::newRow("longer than a block") << QByteArray(129, 'b');
    QTest::newRow("longest") << QByteArray(65'535, 'b');
    QTest::newRow("letters") << QByteArray("\xc3\xa4\xe2\x82\xac");
}

void tst_stored_hash_t::password_matches_its_hash() {
    QFETCH(QByteArray, password);
    for (const int iterations : {1, 2, 1'000}) {
        const QByteArray hash = plugin_broker_t::hash(password, iterations);
        QVERIFY(matches(hash, password));
        QVERIFY(!matches(hash, password + "x"));
        QVERIFY(!matches(hash, "another"));
    }
}

void tst_stored_hash_t::password_longer_than_a_block_is_kept_short() {
    const QByteArray password(1'000, 'p');
    const password_key_t key({password.constData(), std::size_t(password.size())});
    QCOMPARE(QByteArray(key.data(), qsizetype(key.size())),
             QCryptographicHash::hash(password, QCryptographicHash::Sha512));
}

void tst_stored_hash_t::decoy_matches_nothing_and_costs_as_much() {
    const stored_hash_t decoy = stored_hash_t::decoy(77);
    QCOMPARE(decoy.iterations, 77u);
    QVERIFY(!decoy.matches(password_key_t("")));
    QVERIFY(decoy != stored_hash_t::decoy(77));
}

void tst_stored_hash_t::digest_tells_names_and_passwords_apart() {
    const digest_maker_t maker;
    QVERIFY(maker.make("a", "bc") == maker.make("a", "bc"));
    QVERIFY(maker.make("a", "bc") != maker.make("ab", "c"));
    QVERIFY(maker.make("a", "bc") != maker.make("a", "bd"));
    QVERIFY(maker.make("a", "bc") != digest_maker_t().make("a", "bc"));
}

void tst_stored_hash_t::base64_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("good");
    for (const char* const text : {"", "YQ==", "YWI=", "YWJj", "+/+/", "AAAA"}) {
        QTest::newRow(text) << QByteArray(text) << true;
    }
    for (const char* const text :
         {"Y", "YQ", "YQ=", "YQ===", "=", "====", "Y===", "YQ==YQ==", "Y Q=", "-_-_", "YWJ\x80"}) {
        QTest::newRow(text) << QByteArray(text) << false;
    }
}

void tst_stored_hash_t::base64() {
    QFETCH(QByteArray, text);
    const auto bytes = from_base64(text.constData());
    QTEST(bytes.has_value(), "good");
    QVERIFY(!bytes || QByteArray::fromStdString(*bytes) == QByteArray::fromBase64(text));
}

QTEST_GUILESS_MAIN(tst_stored_hash_t)
#include "tst_stored_hash_t.moc"

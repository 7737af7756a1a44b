#include <QElapsedTimer>
#include <QtTest>
#include <algorithm>

#include "kit/lamps_home.h"
#include "kit/small_home.h"
#include "system/support/api_user.h"
#include "system/support/flood_t.h"

using namespace kit;
using namespace support;
using plan_t = flood_t::plan_t;

namespace {

constexpr int element_count = 1'000;
constexpr int item_count = 16;
constexpr int user_count = 10;
/// Requests of the one who must not suffer.
#if defined(NDEBUG)
constexpr int samples = 200;
#else
constexpr int samples = 30;
#endif

/// How long somebody waited, in milliseconds, and the most memory meanwhile, in MiB.
struct figures_t {
    double median = 0;
    double p99 = 0;
    int server = 0;
    int broker = 0;
};

}  // namespace

/// Whatever one user sends, the others are answered as before, and no memory is lost to it. A debug
/// build is several times slower: what it must keep is wider, the figures are read from release
/// code.
class tst_floods : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void others_are_answered_and_memory_stays_data();
    void others_are_answered_and_memory_stays();
    void a_refused_request_is_told_why_data();
    void a_refused_request_is_told_why();

 private:
    figures_t measure();

    host_process_t host;
    mqtt_client_t victim;
    figures_t quiet;
};

void tst_floods::initTestCase() {
    QJsonObject home = lamps_home(element_count, item_count, numbered_users(user_count));
    home = with(home, "users/u-nobody",
                QJsonObject{{"username", "nobody"}, {"password", password_of("nobody")}});
    QVERIFY2(host.import(home), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    QCOMPARE(victim.sign_in(host.port(), "user1", password_of("user1")), 0);
    QVERIFY(victim.subscribe("local/api/v1/user1/me/status/#"));
    measure();  // everything is warm now
    quiet = measure();
    qInfo("quiet: median %.1f ms, p99 %.1f ms, server %d MiB, broker %d MiB", quiet.median,
          quiet.p99, quiet.server, quiet.broker);
    QVERIFY(quiet.p99 > 0);
}

figures_t tst_floods::measure() {
    std::vector<double> waited;
    figures_t figures;
    const qint64 broker = host.broker_pid();
    for (int index = 0; index < samples; ++index) {
        QElapsedTimer clock;
        clock.start();
        const QJsonObject answer = victim.request(request_topic("user1", "get", lamp_id(index)));
        if (!answer.contains("data")) {
            return {};
        }
        waited.push_back(double(clock.nsecsElapsed()) / 1e6);
        victim.forget();
        figures.server = std::max(figures.server, host.resident_mib());
        figures.broker = std::max(figures.broker, host_process_t::resident_mib_of(broker));
    }
    std::sort(waited.begin(), waited.end());
    figures.median = waited[waited.size() / 2];
    figures.p99 = waited[waited.size() * 99 / 100];
    return figures;
}

void tst_floods::others_are_answered_and_memory_stays_data() {
    QTest::addColumn<QString>("user");
    QTest::addColumn<QByteArray>("verb");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<bool>("subscribes");
    const auto row = [](const char* _name, const char* _user, const char* _verb,
                        const QByteArray& _payload, bool _subscribes = false) {
        QTest::newRow(_name) << QString(_user) << QByteArray(_verb) << _payload << _subscribes;
    };
    const QByteArray write = R"({"data":{"functions":{"execute":7}}})";
    row("lists that it does not want", "user0", "get/elements/objects_list", "{}");
    row("lists that it does not read", "user0", "get/elements/objects_list", "{}", true);
    row("writes", "user0", "set/elements/objects_list/e-5", write);
    row("without any right", "nobody", "get/elements/objects_list", "{}");
    row("filters without end", "user0", "get/elements/objects_list",
        "{\"filters\":{\"types\":[" + QByteArray("1,").repeated(500'000) + "1]}}");
    row("values without end", "user0", "set/elements/objects_list/e-5",
        "{\"data\":{\"functions\":{\"execute\":\"" + QByteArray(1'000'000, '9') + "\"}}}");
    row("requests without end", "user0", "get/elements/objects_list", QByteArray(3'000'000, ' '));
    row("no object", "user0", "get/elements/objects_list", "[1, 2");
}

void tst_floods::others_are_answered_and_memory_stays() {
    QFETCH(QString, user);
    QFETCH(QByteArray, verb);
    QFETCH(QByteArray, payload);
    QFETCH(bool, subscribes);
    flood_t flood(host.port(), {user, "local/api/v1/" + user.toUtf8() + "/me/request/" + verb,
                                payload, subscribes});
    QVERIFY(flood.wait_until_running());
    const figures_t figures = measure();
    qInfo("%s: median %.1f ms, p99 %.1f ms, server %d MiB, broker %d MiB, %llu sent",
          QTest::currentDataTag(), figures.median, figures.p99, figures.server, figures.broker,
          static_cast<unsigned long long>(flood.sent()));
    QVERIFY2(figures.p99 > 0, "not answered");
#ifdef NDEBUG
    QVERIFY(figures.p99 < std::max(3 * quiet.p99, 60.0));
    QVERIFY(figures.server + figures.broker < 200);
#elif !defined(__SANITIZE_ADDRESS__)
    QVERIFY(figures.p99 < 1'000);
    QVERIFY(figures.server + figures.broker < 400);
#endif
}

void tst_floods::a_refused_request_is_told_why_data() {
    QTest::addColumn<QJsonObject>("payload");
    QTest::addColumn<QJsonObject>("answer");
    const QJsonObject too_large{{"error", 413}, {"message", "Too large request"}};
    QJsonArray types;
    for (int index = 0; index < 1'001; ++index) {
        types.append(1);
    }
    QTest::newRow("long filter") << QJsonObject{{"filters", QJsonObject{{"types", types}}}}
                                 << too_large;
    QTest::newRow("long value") << QJsonObject{{"data", QString(1'025, '9')}} << too_large;
    QTest::newRow("large request") << QJsonObject{{"a", QString(1'100'000, '9')}} << too_large;
}

void tst_floods::a_refused_request_is_told_why() {
    QFETCH(QJsonObject, payload);
    QFETCH(QJsonObject, answer);
    QJsonObject told = victim.request(request_topic("user1", "get"), payload);
    QVERIFY(told.contains("uuid"));
    told.remove("uuid");
    QCOMPARE(told, answer);
}

QTEST_GUILESS_MAIN(tst_floods)
#include "tst_floods.moc"

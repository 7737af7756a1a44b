#include <sys/resource.h>

#include <QtTest>

#include "system/support/loaded_home.h"
#include "system/support/troubles.h"
#include "system/support/victim_t.h"

using namespace support;

namespace {

constexpr int samples = 200;
/// Who floods is sent away and comes again within this time.
constexpr int trouble_ms = 12'000;

QString text_of(const waits_t& _waits) {
    return _waits.unanswered > 0
               ? QStringLiteral("not answered")
               : QStringLiteral("%1 / %2").arg(_waits.median, 0, 'f', 1).arg(_waits.p99, 0, 'f', 1);
}

}  // namespace

/// What one user waits for before, while and after others do their worst, and what it costs in
/// memory; each row is printed as one of a table.
class tst_floods : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void init();
    void others_are_answered_while_one_user_floods_data() { list(floods_of_a_user()); }
    void others_are_answered_while_one_user_floods();
    void others_are_answered_in_other_troubles_data() { list(other_troubles()); }
    void others_are_answered_in_other_troubles();

 private:
    static void list(const std::vector<trouble_t>& _troubles) {
        QTest::addColumn<int>("index");
        for (std::size_t i = 0; i < _troubles.size(); ++i) {
            QTest::newRow(_troubles[i].name) << int(i);
        }
    }
    void suffer(const trouble_t& _trouble);

    std::unique_ptr<host_process_t> host;
    waits_t before;
    waits_t during;
    waits_t after;
};

void tst_floods::initTestCase() {
    rlimit limit{};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 4'000);
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    qInfo("| | median / p99 before, ms | during | after | longest | server, MiB | broker, MiB |");
}

void tst_floods::init() {
    host = std::make_unique<host_process_t>();
    QVERIFY2(host->import(loaded_home(1'000, 10)), qPrintable(host->error()));
    QVERIFY2(host->start(), qPrintable(host->error()));
}

void tst_floods::suffer(const trouble_t& _trouble) {
    victim_t victim(host.get(), "user1");
    QVERIFY(victim.sign_in());
    victim.ask(samples);  // everything is warm now
    before = victim.ask(samples);
    auto trouble = _trouble.begin(*host);
    QVERIFY(trouble);
    during = victim.ask(samples, trouble_ms);
    trouble.reset();
    after = victim.ask(samples);
    qInfo("| %s | %s | %s | %s | %.1f | %d | %d |", _trouble.name, qPrintable(text_of(before)),
          qPrintable(text_of(during)), qPrintable(text_of(after)),
          std::max(during.longest, after.longest), std::max(during.server, after.server),
          std::max(during.broker, after.broker));
    QCOMPARE(during.unanswered + after.unanswered, 0);
}

void tst_floods::others_are_answered_while_one_user_floods() {
    QFETCH(int, index);
    suffer(floods_of_a_user()[std::size_t(index)]);
    QVERIFY(during.p99 < std::max(3 * before.p99, 60.0));
    QVERIFY(during.server + during.broker < 200);
}

void tst_floods::others_are_answered_in_other_troubles() {
    QFETCH(int, index);
    suffer(other_troubles()[std::size_t(index)]);
}

QTEST_GUILESS_MAIN(tst_floods)
#include "tst_floods.moc"

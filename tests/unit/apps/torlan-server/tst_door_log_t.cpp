#include "door_log_t.h"

#include <QTest>

#include "fakes/recording_logger_t.h"

using accounts::broker_event_t;
using torlan::door_log_t;

namespace {

broker_event_t made(const QString& _kind, const QString& _user, qint64 _count = 1) {
    return {_kind, _count, 0, 0, _user, "phone", "127.0.0.1", {}};
}

}  // namespace

class tst_door_log_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void refusals_are_warnings_and_the_rest_is_for_the_file();
    void the_same_again_is_one_line_a_minute_later();
    void nobody_fills_the_log();
    void what_the_broker_had_no_room_for_counts();
};

void tst_door_log_t::refusals_are_warnings_and_the_rest_is_for_the_file() {
    const fakes::recording_logger_t logger;
    door_log_t log;
    log.tell(made("failed", "alice"));
    log.tell(made("signed-in", "alice"));
    QCOMPARE(logger.lines().size(), 2);
    QCOMPARE(logger.lines()[0].level, 3);
    QVERIFY(logger.lines()[0].message.contains("failed to sign in as \"alice\""));
    QCOMPARE(logger.lines()[1].level, 5);
}

void tst_door_log_t::the_same_again_is_one_line_a_minute_later() {
    const fakes::recording_logger_t logger;
    door_log_t log;
    for (int i = 0; i < 100; ++i) {
        log.tell(made("failed", "alice", 2));
    }
    log.tell(made("failed", "bob"));
    QCOMPARE(logger.lines().size(), 2);
    log.settle();
    QCOMPARE(logger.lines().size(), 3);
    QVERIFY(logger.lines()[2].message.contains("\"alice\""));
    QVERIFY(logger.lines()[2].message.contains("198 times"));
    log.tell(made("failed", "alice"));
    QCOMPARE(logger.lines().size(), 4);
    log.settle();
    QCOMPARE(logger.lines().size(), 4);
}

void tst_door_log_t::nobody_fills_the_log() {
    const fakes::recording_logger_t logger;
    door_log_t log;
    for (int i = 0; i < 10'000; ++i) {
        log.tell(made("failed", QString::number(i)));
    }
    QCOMPARE(logger.lines().size(), door_log_t::most_a_minute);
    log.settle();
    QCOMPARE(logger.lines().size(), door_log_t::most_a_minute + 1);
    QCOMPARE(logger.lines().last().message,
             QString("%1 more happened at the broker's door").arg(10'000 - log.most_a_minute));
}

void tst_door_log_t::what_the_broker_had_no_room_for_counts() {
    const fakes::recording_logger_t logger;
    door_log_t log;
    log.tell_lost(7);
    QVERIFY(logger.lines().isEmpty());
    log.settle();
    QCOMPARE(logger.lines().size(), 1);
    QCOMPARE(logger.lines()[0].message, QString("7 more happened at the broker's door"));
}

QTEST_GUILESS_MAIN(tst_door_log_t)
#include "tst_door_log_t.moc"

#include "logs/error_ring_t.h"

#include <QTest>

#include "fakes/recording_logger_t.h"

using utility::logs::error_ring_t;

class tst_error_ring_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void errors_are_kept_and_everything_is_passed_on() {
        fakes::recording_logger_t logger;
        error_ring_t ring;
        ring.pass_on_to(&logger);
        for (const int level : {0, 1, 2, 3, 4, 6}) {
            ring.log_asynch(QString("level %1").arg(level), level, "f", "server/a", 7);
        }
        QCOMPARE(logger.lines().size(), 6);
        QCOMPARE(logger.lines()[5].function, QString("f"));
        QCOMPARE(logger.lines()[5].line, 7);
        QCOMPARE(messages(ring), QStringList({"level 0", "level 1", "level 2"}));
        QVERIFY(ring.errors()[0].time.secsTo(QDateTime::currentDateTimeUtc()) < 60);
    }

    void the_last_ones_are_kept_and_no_text_is_endless() {
        error_ring_t ring;
        for (int i = 1; i <= 30; ++i) {
            ring.log_asynch(QString::number(i) + QString(1000, u'x'), 2, "f", "server/a", 1);
        }
        QCOMPARE(ring.errors().size(), error_ring_t::most_errors);
        QVERIFY(messages(ring).constFirst().startsWith("11x"));
        QVERIFY(messages(ring).constLast().startsWith("30x"));
        QCOMPARE(messages(ring).constLast().size(), error_ring_t::longest_error);
    }

 private:
    static QStringList messages(const error_ring_t& _ring) {
        QStringList found;
        for (const auto& error : _ring.errors()) {
            found.append(error.message);
        }
        return found;
    }
};

QTEST_APPLESS_MAIN(tst_error_ring_t)
#include "tst_error_ring_t.moc"

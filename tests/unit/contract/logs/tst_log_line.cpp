#include <QTest>

#include "fakes/recording_logger_t.h"
#include "logs/log_line.h"

using utility::log_line;

class tst_log_line : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void every_argument_reaches_the_logger() {
        const fakes::recording_logger_t logger;
        log_line(QStringLiteral("caf\u00e9"), 3, "function", "server/source", 17);
        QCOMPARE(logger.lines().size(), 1);
        QVERIFY(logger.contains(QStringLiteral("caf\u00e9"), 3, "function", "server/source", 17));
    }

    void without_a_logger_the_line_is_skipped() {
        QCOMPARE(utility::logs::classlogs::getInstance(), nullptr);
        log_line(QStringLiteral("nobody"), 0, "function", "source", 1);
        const fakes::recording_logger_t logger;
        QVERIFY(logger.lines().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_log_line)
#include "tst_log_line.moc"

#include <QTest>
#include <QThread>
#include <memory>

#include "fakes/recording_logger_t.h"

using fakes::recording_logger_t;
using utility::logs::classlogs;

class tst_recording_logger_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void it_is_the_installed_logger_while_it_lives() {
        QCOMPARE(classlogs::getInstance(), nullptr);
        {
            recording_logger_t logger;
            QCOMPARE(classlogs::getInstance(), &logger);
        }
        QCOMPARE(classlogs::getInstance(), nullptr);
    }

    void a_line_is_found_only_with_every_part_equal() {
        recording_logger_t logger;
        logger.log_asynch(QStringLiteral("text"), 4, QStringLiteral("f"), QStringLiteral("s"), 7);
        const auto found = [&logger](const char* _text, int _level, int _line) {
            return logger.contains(QLatin1String(_text), _level, QStringLiteral("f"),
                                   QStringLiteral("s"), _line);
        };
        QVERIFY(found("text", 4, 7));
        QVERIFY(!found("tex", 4, 7));
        QVERIFY(!found("text", 3, 7));
        QVERIFY(!found("text", 4, 8));
    }

    void count_looks_inside_messages_and_clear_forgets() {
        recording_logger_t logger;
        for (int i = 0; i < 3; ++i) {
            logger.log_asynch(QStringLiteral("round %1").arg(i), i, {}, {}, 1);
        }
        QCOMPARE(logger.count(QStringLiteral("round")), 3);
        QCOMPARE(logger.count(QStringLiteral("round 1")), 1);
        QCOMPARE(logger.lines().at(2).level, 2);
        logger.clear();
        QVERIFY(logger.lines().isEmpty());
    }

    void lines_of_several_threads_are_all_kept() {
        recording_logger_t logger;
        const auto write = [] {
            for (int i = 0; i < 500; ++i) {
                classlogs::getInstance()->log_asynch(QStringLiteral("x"), 6, {}, {}, i);
            }
        };
        const std::unique_ptr<QThread> other(QThread::create(write));
        other->start();
        write();
        QVERIFY(other->wait());
        QCOMPARE(logger.count(QStringLiteral("x")), 1000);
    }
};

QTEST_GUILESS_MAIN(tst_recording_logger_t)
#include "tst_recording_logger_t.moc"

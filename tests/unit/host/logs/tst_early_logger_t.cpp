#include <unistd.h>

#include <QTemporaryFile>
#include <QTest>
#include <cstdio>

#include "fakes/recording_logger_t.h"
#include "logs/early_logger_t.h"

using utility::logs::classlogs;
using utility::logs::early_logger_t;

class tst_early_logger_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_was_kept_is_handed_over_once_and_in_order() {
        early_logger_t early;
        fakes::recording_logger_t later;
        early.log_asynch("first", 6, "f", "server/a", 1);
        early.log_asynch("second", 0, "g", "server/b", 2);
        early.hand_over(&later);
        early.hand_over(&later);
        const auto lines = later.lines();
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[0].message, QString("first"));
        QCOMPARE(lines[0].level, 6);
        QCOMPARE(lines[0].function, QString("f"));
        QCOMPARE(lines[0].source, QString("server/a"));
        QCOMPARE(lines[0].line, 1);
        QCOMPARE(lines[1].message, QString("second"));
    }

    void what_nobody_took_is_shown_at_the_end_up_to_the_level_data() {
        QTest::addColumn<int>("level");
        QTest::addColumn<QByteArray>("shown");
        QTest::newRow("2") << 2 << QByteArray("[0] server/a:7 f zero\n[2] server/a:7 f two\n");
        QTest::newRow("6") << 6
                           << QByteArray(
                                  "[0] server/a:7 f zero\n[2] server/a:7 f two\n"
                                  "[4] server/a:7 f four\\nforged\n[6] server/a:7 f six\n");
    }
    void what_nobody_took_is_shown_at_the_end_up_to_the_level() {
        QFETCH(int, level);
        const QByteArray shown = output_of([level] {
            early_logger_t early;
            early.set_level(level);
            early.log_asynch("zero", 0, "f", "server/a", 7);
            early.log_asynch("two", 2, "f", "server/a", 7);
            early.log_asynch("four\nforged", 4, "f", "server/a", 7);
            early.log_asynch("six", 6, "f", "server/a", 7);
        });
        QTEST(shown, "shown");
    }

    void what_was_handed_over_is_not_shown() {
        fakes::recording_logger_t later;
        const QByteArray shown = output_of([&later] {
            early_logger_t early;
            early.log_asynch("taken", 0, "f", "server/a", 7);
            early.hand_over(&later);
        });
        QCOMPARE(shown, QByteArray());
    }

    void lines_beyond_the_limit_are_counted() {
        early_logger_t early;
        fakes::recording_logger_t later;
        for (qsizetype i = 0; i < early_logger_t::max_lines + 3; ++i) {
            early.log_asynch(QString::number(i), 4, "f", "server/a", 7);
        }
        early.hand_over(&later);
        QCOMPARE(later.lines().size(), early_logger_t::max_lines + 1);
        QCOMPARE(later.lines().constLast().message, QString("3 lines of the start are lost"));
    }

    void it_takes_itself_out_but_no_other() {
        {
            early_logger_t early;
            classlogs::setInstance(&early);
        }
        QVERIFY(classlogs::getInstance() == nullptr);
        fakes::recording_logger_t other;
        classlogs::setInstance(&other);
        { const early_logger_t early; }
        QVERIFY(classlogs::getInstance() == &other);
        classlogs::setInstance(nullptr);
    }

 private:
    template <class Call>
    static QByteArray output_of(const Call& _call) {
        QTemporaryFile file;
        if (!file.open()) {
            return "no file";
        }
        std::fflush(stdout);
        const int former = ::dup(STDOUT_FILENO);
        ::dup2(file.handle(), STDOUT_FILENO);
        _call();
        std::fflush(stdout);
        ::dup2(former, STDOUT_FILENO);
        ::close(former);
        file.seek(0);
        return file.readAll();
    }
};

QTEST_GUILESS_MAIN(tst_early_logger_t)
#include "tst_early_logger_t.moc"

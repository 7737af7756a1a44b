#include "line/nearest_word.h"

#include <QTest>

using namespace torlan;

class tst_nearest_word : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void steps_are_counted_data() {
        QTest::addColumn<QString>("one");
        QTest::addColumn<QString>("other");
        QTest::addColumn<int>("steps");
        QTest::newRow("same") << "set"
                              << "set" << 0;
        QTest::newRow("empty") << ""
                               << "set" << 3;
        QTest::newRow("one more") << "set"
                                  << "seat" << 1;
        QTest::newRow("one less") << "seat"
                                  << "set" << 1;
        QTest::newRow("another") << "set"
                                 << "sat" << 1;
        QTest::newRow("swapped") << "exprot"
                                 << "export" << 1;
        QTest::newRow("nothing alike") << "abc"
                                       << "xyz" << 3;
        QTest::newRow("long way") << "kitten"
                                  << "sitting" << 3;
    }
    void steps_are_counted() {
        QFETCH(QString, one);
        QFETCH(QString, other);
        QTEST(steps_between(one, other), "steps");
    }

    void only_what_is_near_was_meant_data() {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("meant");
        QTest::newRow("slip") << "matrx"
                              << "matrix";
        QTest::newRow("the nearest") << "usr"
                                     << "user";
        QTest::newRow("far") << "frobnicate"
                             << "";
        QTest::newRow("short and other") << "xyz"
                                         << "";
        QTest::newRow("very long") << QString(5'000, 'm') << "";
    }
    void only_what_is_near_was_meant() {
        QFETCH(QString, word);
        QTEST(nearest_word(word, {"matrix", "set", "users", "user"}), "meant");
    }
};

QTEST_GUILESS_MAIN(tst_nearest_word)
#include "tst_nearest_word.moc"

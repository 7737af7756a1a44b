#include "ets/data_point_type.h"

#include <QTest>

class tst_data_point_type : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void of_one_word_data() {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("type");
        QTest::newRow("sub-type") << "DPST-1-1"
                                  << "1.001";
        QTest::newRow("sub-type of three digits") << "DPST-20-102"
                                                  << "20.102";
        QTest::newRow("sub-type 0") << "DPST-5-0"
                                    << "5.000";
        QTest::newRow("main type") << "DPT-9"
                                   << "9";
        QTest::newRow("main type of three digits") << "DPST-251-600"
                                                   << "251.600";
        QTest::newRow("blanks around it") << " DPT-1 "
                                          << "1";
        QTest::newRow("nothing") << ""
                                 << "";
        QTest::newRow("main type 0") << "DPT-0"
                                     << "";
        QTest::newRow("the wrong word") << "DPT-1-1"
                                        << "";
        QTest::newRow("no sub-type where one belongs") << "DPST-1"
                                                       << "";
        QTest::newRow("people's way") << "1.001"
                                      << "";
    }
    void of_one_word() {
        QFETCH(QString, word);
        QTEST(ets::type_text(word), "type");
    }

    void of_several_data() {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("last");
        QTest::newRow("one") << "DPST-1-1"
                             << "1.001"
                             << "1.001";
        QTest::newRow("two") << "DPST-5-1 DPST-5-3"
                             << "5.001"
                             << "5.003";
        QTest::newRow("commas") << "DPT-1,DPST-1-8"
                                << "1"
                                << "1.008";
        QTest::newRow("what is none does not count") << "x DPT-1 y"
                                                     << "1"
                                                     << "1";
        QTest::newRow("none") << " "
                              << ""
                              << "";
    }
    void of_several() {
        QFETCH(QString, words);
        QTEST(ets::first_type(words), "first");
        QTEST(ets::last_type(words), "last");
    }

    void parts_data() {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("main");
        QTest::newRow("with a sub-type") << "9.001" << 9;
        QTest::newRow("without") << "17" << 17;
        QTest::newRow("none") << "" << 0;
    }
    void parts() {
        QFETCH(QString, type);
        QTEST(ets::main_type(type), "main");
    }
};

QTEST_GUILESS_MAIN(tst_data_point_type)
#include "tst_data_point_type.moc"

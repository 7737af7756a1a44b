#include "ets/program_object.h"

#include <QTest>

class tst_program_object : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void instances_of_modules_go_data() {
        QTest::addColumn<QString>("ref");
        QTest::addColumn<QString>("left");
        QTest::newRow("short") << "O-40_R-1433"
                               << "O-40_R-1433";
        QTest::newRow("long") << "M-00FA_A-0001-01-ABCD_O-4_R-9"
                              << "M-00FA_A-0001-01-ABCD_O-4_R-9";
        QTest::newRow("module") << "MD-2_M-17_MI-1_O-3-0_R-159"
                                << "MD-2_O-3-0_R-159";
        QTest::newRow("long with a module") << "M-00FA_A-0001-01-ABCD_MD-2_M-17_MI-1_O-3-0_R-1"
                                            << "M-00FA_A-0001-01-ABCD_MD-2_O-3-0_R-1";
        QTest::newRow("module in a module") << "MD-4_M-15_MI-1_SM-1_M-1_MI-1-1-2_SM-1_O-3-1_R-2"
                                            << "MD-4_SM-1_O-3-1_R-2";
        QTest::newRow("nothing") << ""
                                 << "";
    }
    void instances_of_modules_go() {
        QFETCH(QString, ref);
        QTEST(ets::without_instances(ref), "left");
    }

    void programs_data() {
        QTest::addColumn<QString>("ref");
        QTest::addColumn<QString>("program");
        QTest::newRow("long") << "M-00FA_A-0001-01-ABCD_O-4_R-9"
                              << "M-00FA_A-0001-01-ABCD";
        QTest::newRow("short") << "O-4_R-9"
                               << "";
        QTest::newRow("module") << "MD-1_M-1_MI-1_O-4_R-9"
                                << "";
        QTest::newRow("nothing") << ""
                                 << "";
    }
    void programs() {
        QFETCH(QString, ref);
        QTEST(ets::program_in(ref), "program");
    }

    void program_of_hardware_data() {
        QTest::addColumn<QString>("hardware");
        QTest::addColumn<QString>("program");
        QTest::newRow("usual") << "M-00FA_H-19-1_HP-0001-01-ABCD"
                               << "M-00FA_A-0001-01-ABCD";
        QTest::newRow("without a program") << "M-00FA_H-19-1"
                                           << "";
        QTest::newRow("without a maker") << "H-19-1_HP-0001-01-ABCD"
                                         << "";
        QTest::newRow("nothing") << ""
                                 << "";
    }
    void program_of_hardware() {
        QFETCH(QString, hardware);
        QTEST(ets::usual_program(hardware), "program");
    }
};

QTEST_GUILESS_MAIN(tst_program_object)
#include "tst_program_object.moc"

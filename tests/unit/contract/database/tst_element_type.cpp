#include <QTest>
#include <limits>

#include "database/element_type.h"

class tst_element_type : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_codes_are_these() {
        QCOMPARE(database::element_type::scenario, 8);
        QCOMPARE(database::element_type::thermostat, 17);
    }

    void five_codes_are_hidden_and_all_others_shown() {
        const QList<int> hidden{-1, 11, 14, 18, 19};
        for (int code = -70; code <= 140; ++code) {
            QVERIFY2(database::element_type::is_exposed(code) != hidden.contains(code),
                     qPrintable(QString::number(code)));
        }
    }

    void far_codes_are_shown() {
        QVERIFY(database::element_type::is_exposed(std::numeric_limits<int>::max()));
        QVERIFY(database::element_type::is_exposed(std::numeric_limits<int>::min()));
    }
};

QTEST_GUILESS_MAIN(tst_element_type)
#include "tst_element_type.moc"

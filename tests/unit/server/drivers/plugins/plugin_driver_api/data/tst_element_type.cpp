#include <QTest>
#include <limits>

#include "drivers/plugins/plugin_driver_api/data/element_type.h"

class tst_element_type : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void five_codes_are_hidden_and_all_others_shown() {
        const QList<int> hidden{-1, 11, 14, 18, 19};
        for (int code = -70; code <= 140; ++code) {
            QVERIFY2(interfaces::is_exposed_element_type(code) != hidden.contains(code),
                     qPrintable(QString::number(code)));
        }
    }

    void far_codes_are_shown() {
        QVERIFY(interfaces::is_exposed_element_type(std::numeric_limits<int>::max()));
        QVERIFY(interfaces::is_exposed_element_type(std::numeric_limits<int>::min()));
    }
};

QTEST_GUILESS_MAIN(tst_element_type)
#include "tst_element_type.moc"

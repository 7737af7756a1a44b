#include "bench/report/document.h"

#include <QJsonArray>
#include <QtTest>

#include "bench/report/markdown.h"
#include "bench/report/request_table.h"

using namespace bench;

class tst_document : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void words_of_a_template_become_tables() {
        const auto text = fill_in("a\n@one@\nb @one@\n@two@\n", {{"one", "1\n"}, {"two", "2\n"}});
        QVERIFY2(text.is_ok(), qPrintable(text.error));
        QCOMPARE(text.value, "a\n1\nb @one@\n2\n");
    }

    void a_word_that_nothing_stands_for_is_told() {
        QCOMPARE(fill_in("@other@\n", {}).error,
                 "The template names \"other\", which nothing stands for.");
    }

    void what_was_not_measured_is_told() {
        QCOMPARE(tables_of({})["requests"], "Not measured in this run.\n");
    }

    void every_word_of_the_template_is_known() {
        QFile file(TEMPLATE);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const auto text = fill_in(QString::fromUtf8(file.readAll()), tables_of({}));
        QVERIFY2(text.is_ok(), qPrintable(text.error));
    }

    void a_ratio_is_the_median_of_the_rounds_own() {
        const QJsonObject ours{{"rate", QJsonArray{1, 2, 30}}};
        const QJsonObject raw{{"rate", QJsonArray{2, 1, 10}}};
        QCOMPARE(ratio(ours, raw, "rate"), 2.0);  // of 0.5, 2 and 3
    }

    void figures_have_three_digits_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("small") << 0.936 << "0.94";
        QTest::newRow("tens") << 12.34 << "12.3";
        QTest::newRow("hundreds") << 123.4 << "123";
        QTest::newRow("thousands") << 12345.6 << "12,346";
    }
    void figures_have_three_digits() {
        QFETCH(double, value);
        QTEST(figure(value), "text");
    }
};

QTEST_GUILESS_MAIN(tst_document)
#include "tst_document.moc"

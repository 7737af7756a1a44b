#include <QTest>

#include "unit/apps/torlanctl/torlanctl_t.h"

/// Values of KNX data points, without any installation.
class tst_dpt : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void answer_is_one_line_data();
    void answer_is_one_line();
    void refusal_is_one_sentence_data();
    void refusal_is_one_sentence();
    void list_has_a_line_for_each_type();
};

void tst_dpt::answer_is_one_line_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("output");
    const auto row = [](const QStringList& _arguments, const char* _output) {
        QTest::newRow(qPrintable(_arguments.join(' ')))
            << _arguments << QString::fromUtf8(_output) + '\n';
    };
    row({"dpt", "encode", "9.001", "21.5"}, "0c33");
    row({"dpt", "decode", "9.001", "0c33"}, "21.5");
    row({"dpt", "decode", "9.001", "0C33"}, "21.5");
    row({"dpt", "encode", "9.001", "-5"}, "860c");
    row({"dpt", "encode", "6.010", "-1"}, "ff");
    row({"dpt", "decode", "16.001", "4bfc636865000000000000000000"}, "Küche");
    row({"--data", "/none", "dpt", "decode", "1.001", "01"}, "1");
}

void tst_dpt::answer_is_one_line() {
    QFETCH(QStringList, arguments);
    const call_t call = torlanctl_t::run(arguments);
    QCOMPARE(call.error, QString());
    QTEST(call.output, "output");
    QCOMPARE(call.status, 0);
}

void tst_dpt::refusal_is_one_sentence_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const QStringList& _arguments, const char* _error) {
        QTest::newRow(qPrintable(_arguments.join(' '))) << _arguments << QString::fromUtf8(_error);
    };
    row({"dpt", "encode", "9.999", "21.5"}, "There is no data point type \"9.999\".");
    row({"dpt", "decode", "206.100", "00"}, "There is no data point type \"206.100\".");
    row({"dpt", "encode", "9.001", "-300"},
        "The value \"-300\" is out of range for type 9.001 (temperature): -273 to 670760 °C.");
    row({"dpt", "decode", "9.001", "7fff"},
        "The bytes 7fff are no value of type 9.001 (temperature).");
    row({"dpt", "decode", "9.001", "0c3"},
        "\"0c3\" is no text of bytes: two hexadecimal digits for each.");
    row({"dpt", "decode", "9.001", ""},
        "\"\" is no text of bytes: two hexadecimal digits for each.");
    row({"dpt", "decode", "9.001", "0c"}, "Type 9.001 (temperature) has 2 bytes, not 1.");
}

void tst_dpt::refusal_is_one_sentence() {
    QFETCH(QStringList, arguments);
    const call_t call = torlanctl_t::run(arguments);
    QFETCH(QString, error);
    QCOMPARE(call.error, "torlanctl: " + error);
    QCOMPARE(call.output, QString());
    QCOMPARE(call.status, 1);
}

void tst_dpt::list_has_a_line_for_each_type() {
    const call_t call = torlanctl_t::run({"dpt", "list"});
    QCOMPARE(call.status, 0);
    QVERIFY(call.output.count('\n') > 280);
    QVERIFY(
        call.output.contains("\n9.001    temperature                      -273 to 670760 °C\n"));
}

QTEST_GUILESS_MAIN(tst_dpt)
#include "tst_dpt.moc"

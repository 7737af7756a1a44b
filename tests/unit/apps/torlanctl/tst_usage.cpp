#include <QTest>

#include "unit/apps/torlanctl/torlanctl_t.h"

class tst_usage : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void wrong_call_ends_with_status_2_data();
    void wrong_call_ends_with_status_2();
    void help_lists_every_command();
};

void tst_usage::wrong_call_ends_with_status_2_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const QStringList& _arguments, const QString& _error) {
        QTest::newRow(qPrintable(_arguments.join(' '))) << _arguments << _error;
    };
    row({}, "A command is missing.");
    row({"export"}, "--data DIR is missing.");
    row({"--data"}, "Missing value after '--data'.");
    row({"--dta", "x", "export"}, "Unknown option 'dta'.");
    row({"--data", "x", "exprot"}, "There is no command \"exprot\".");
    row({"--data", "x", "user"}, "There is no command \"user\".");
    row({"--data", "x", "user", "list", "y"}, "There is no command \"user list\".");
    row({"--data", "x", "import"}, "Usage: torlanctl --data DIR import FILE.");
    row({"--data", "x", "user", "add"}, "Usage: torlanctl --data DIR user add NAME.");
    row({"--data", "x", "set", "i"}, "Usage: torlanctl --data DIR set ITEM VALUE.");
    row({"dpt"}, "There is no command \"dpt\".");
    row({"dpt", "list", "y"}, "Usage: torlanctl dpt list.");
    row({"dpt", "encode", "9.001"}, "Usage: torlanctl dpt encode TYPE VALUE.");
    row({"--data", "x", "status", "--jsn"}, "status has no option \"--jsn\".");
    row({"--data", "x", "bus", "--follow", "y"}, "bus has no option \"y\".");
    row({"--data", "x", "export", "y"}, "Usage: torlanctl --data DIR export.");
}

void tst_usage::wrong_call_ends_with_status_2() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const call_t call = torlanctl_t::run(arguments);
    QCOMPARE(call.error, "torlanctl: " + error + " See torlanctl --help.");
    QCOMPARE(call.status, 2);
    QCOMPARE(call.output, QString());
}

void tst_usage::help_lists_every_command() {
    const call_t call = torlanctl_t::run({"--help"});
    QCOMPARE(call.status, 0);
    for (const char* command :
         {"import FILE", "export", "grant USER ELEMENT PERMISSION", "user add NAME",
          "user passwd NAME", "user remove NAME", "set ITEM VALUE", "dpt encode TYPE VALUE",
          "audit [OPTIONS]", "status [--json]", "bus [--follow] [--json]", "--data <DIR>"}) {
        QVERIFY2(call.output.contains(QLatin1StringView(command)), command);
    }
}

QTEST_GUILESS_MAIN(tst_usage)
#include "tst_usage.moc"

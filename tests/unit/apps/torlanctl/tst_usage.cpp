#include <QStandardPaths>
#include <QTest>

#include "unit/apps/torlanctl/torlanctl_t.h"

class tst_usage : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void wrong_call_ends_with_status_2_data();
    void wrong_call_ends_with_status_2();
    void help_lists_every_command();
    void help_and_manual_tell_each_status();
    void help_of_a_command_has_examples();
    void help_of_a_group_lists_its_commands();
    void folder_is_var_unless_it_is_named();
    void manual_page_has_no_mistakes();
    void completion_is_a_function_that_bash_runs();
};

void tst_usage::wrong_call_ends_with_status_2_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const QStringList& _arguments, const QString& _error) {
        QTest::newRow(qPrintable(_arguments.join(' '))) << _arguments << _error;
    };
    row({}, "A command is missing.");
    row({"--data"}, "--data takes a value.");
    row({"--dta", "x", "export"}, "torlanctl has no option \"--dta\". Did you mean --data?");
    row({"--data", "x", "exprot"}, "There is no command \"exprot\". Did you mean export?");
    row({"--data", "x", "user"}, "user is followed by one of list, add, passwd, rename, remove.");
    row({"--data", "x", "user", "lst"},
        "There is no command \"user lst\". Did you mean user list?");
    row({"--data", "x", "import"}, "Usage: torlanctl [--data DIR] import FILE [OPTIONS].");
    row({"--data", "x", "user", "add"}, "Usage: torlanctl [--data DIR] user add NAME [OPTIONS].");
    row({"--data", "x", "set", "i"}, "Usage: torlanctl [--data DIR] set ITEM VALUE.");
    row({"dpt"}, "dpt is followed by one of encode, decode, list.");
    row({"dpt", "list", "y"}, "Usage: torlanctl dpt list [OPTIONS].");
    row({"dpt", "encode", "9.001"}, "Usage: torlanctl dpt encode TYPE VALUE [OPTIONS].");
    row({"--data", "x", "status", "--jsn"}, "status has no option \"--jsn\". Did you mean --json?");
    row({"--data", "x", "bus", "--follow", "y"}, "Usage: torlanctl [--data DIR] bus [OPTIONS].");
    row({"--data", "x", "export", "y"}, "Usage: torlanctl [--data DIR] export [OPTIONS].");
    row({"grant", "alice", "e-lamp"},
        "Usage: torlanctl [--data DIR] grant USER ELEMENT|--all|--type N PERMISSION.");
    row({"grant", "alice", "--type", "x", "read"}, "--type takes a whole number, not \"x\".");
    row({"audit", "--since", "soon"},
        "--since takes a time such as 10m, 2h, 3d or 2026-01-31T12:00:00Z, not \"soon\".");
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
         {"import FILE", "export", "grant USER ELEMENT|--all|--type N PERMISSION", "user add NAME",
          "user passwd USER", "user remove USER", "set ITEM VALUE", "dpt encode TYPE VALUE",
          "audit", "status", "bus", "--data DIR"}) {
        QVERIFY2(call.output.contains(QLatin1StringView(command)), command);
    }
    QVERIFY(!call.output.contains("man-page"));
}

void tst_usage::help_and_manual_tell_each_status() {
    const QString help = torlanctl_t::run({"--help"}).output;
    const QString page = torlanctl_t::run({"man-page"}).output;
    for (const char* status : {"0", "1", "2", "3", "4", "5", "6"}) {
        QVERIFY2(help.contains(QStringLiteral("\n  %1  ").arg(status)), status);
        QVERIFY2(page.contains(QStringLiteral("\\fB%1\\fR\n").arg(status)), status);
    }
}

void tst_usage::help_of_a_command_has_examples() {
    const call_t call = torlanctl_t::run({"grant", "--help"});
    QCOMPARE(call.status, 0);
    QVERIFY(call.output.startsWith("Usage: torlanctl [--data DIR] grant USER "));
    QVERIFY(call.output.contains("\nExamples:\n  torlanctl grant bob e-kitchen-ceiling read\n"));
    QVERIFY(call.output.contains("  --type N  "));
}

void tst_usage::help_of_a_group_lists_its_commands() {
    const call_t call = torlanctl_t::run({"user", "--help"});
    QCOMPARE(call.status, 0);
    QVERIFY(call.output.contains("  user rename USER NAME "));
    QVERIFY(!call.output.contains("matrix"));
}

void tst_usage::folder_is_var_unless_it_is_named() {
    const torlanctl_t torlanctl;
    QProcess process;
    process.setWorkingDirectory(torlanctl.data());
    process.start(QStringLiteral(TORLANCTL), {"export"});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray("torlanctl: There is no folder var.\n"));
    QCOMPARE(process.exitCode(), 1);
}

void tst_usage::manual_page_has_no_mistakes() {
    const QByteArray page = torlanctl_t::run({"man-page"}).output.toUtf8();
    QVERIFY(page.contains("\n.SS \"grant USER ELEMENT|\\-\\-all|\\-\\-type N PERMISSION\"\n"));
    const QString groff = QStandardPaths::findExecutable("groff");
    QVERIFY2(!groff.isEmpty(), "there is no groff (Debian's package groff-base)");
    QProcess process;
    process.start(groff, {"-ww", "-z", "-man", "-Tutf8"});
    process.write(page);
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
}

void tst_usage::completion_is_a_function_that_bash_runs() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    const QString script =
        torlanctl.write("completion", torlanctl_t::run({"completion"}).output.toUtf8());
    const auto completed = [&](const QStringList& _words) {
        QProcess bash;
        bash.start("bash", QStringList{"-c",
                                       "source \"$1\"; shift; COMP_WORDS=(\"$@\"); "
                                       "COMP_CWORD=$(($# - 1)); _torlanctl; "
                                       "printf '%s ' \"${COMPREPLY[@]}\"",
                                       "bash", script, TORLANCTL} +
                               _words);
        if (!bash.waitForFinished() || !bash.readAllStandardError().isEmpty()) {
            return QByteArray("failed");
        }
        return bash.readAllStandardOutput();
    };
    QCOMPARE(completed({"user", "r"}), QByteArray("rename remove "));
    QCOMPARE(completed({"--data", torlanctl.data(), "grant", "a"}), QByteArray("alice "));
    QCOMPARE(completed({"--data", torlanctl.data(), "grant", "alice", "e-"}),
             QByteArray("e-lamp e-night e-therm "));
    QCOMPARE(completed({"import", script.chopped(3)}), QByteArray(script.toUtf8() + ' '));
}

QTEST_GUILESS_MAIN(tst_usage)
#include "tst_usage.moc"

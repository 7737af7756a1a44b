#include "line/parse_call.h"

#include <QTest>

#include "unit/apps/torlanctl/line/small_table.h"

using namespace torlan;

class tst_parse_call : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void words_find_their_places_data();
    void words_find_their_places();
    void wrong_call_is_a_sentence_data();
    void wrong_call_is_a_sentence();
    void help_needs_no_arguments();
    void folder_is_var_unless_it_is_given();

 private:
    /// "set ITEM=i VALUE=-5"
    static QString text_of(const call_t& _call) {
        QStringList given;
        for (auto i = _call.given.begin(); i != _call.given.end(); ++i) {
            given.append(i.key() + '=' + i->join(','));
        }
        given.sort();
        return QString::fromLatin1(_call.command->name) + ' ' + given.join(' ');
    }
};

void tst_parse_call::words_find_their_places_data() {
    QTest::addColumn<QStringList>("typed");
    QTest::addColumn<QString>("call");
    const auto row = [](const QStringList& _typed, const char* _call) {
        QTest::newRow(qPrintable(_typed.join(' '))) << _typed << QString(_call);
    };
    row({"set", "i", "1"}, "set ITEM=i VALUE=1");
    row({"set", "i", "-5"}, "set ITEM=i VALUE=-5");
    row({"set", "i", "-.5"}, "set ITEM=i VALUE=-.5");
    row({"set", "i", "-"}, "set ITEM=i VALUE=-");
    row({"set", "i", ""}, "set ITEM=i VALUE=");
    row({"set", "--", "i", "--json"}, "set ITEM=i VALUE=--json");
    row({"set", "--", "i", "--"}, "set ITEM=i VALUE=--");
    row({"list"}, "list ");
    row({"list", "x"}, "list KIND=x");
    row({"list", "--json", "x"}, "list KIND=x json=");
    row({"--json", "list", "x"}, "list KIND=x json=");
    row({"user", "--file", "f", "add", "erin"}, "user add NAME=erin file=f");
    row({"user", "add", "erin", "--file=a=b"}, "user add NAME=erin file=a=b");
    row({"user", "add", "erin", "--file", "--f"}, "user add NAME=erin file=--f");
    row({"element", "set", "e"}, "element set ELEMENT=e FUNCTION=ITEM=");
    row({"element", "set", "e", "a=i", "b=j", "--without", "c", "--without", "d"},
        "element set ELEMENT=e FUNCTION=ITEM=a=i,b=j without=c,d");
    row({"grant", "u", "e", "read"}, "grant ELEMENT=e PERMISSION=read USER=u");
    row({"grant", "u", "--all", "read"}, "grant PERMISSION=read USER=u all=");
    row({"grant", "--type", "-1", "u", "read"}, "grant PERMISSION=read USER=u type=-1");
    row({"secret"}, "secret ");
}

void tst_parse_call::words_find_their_places() {
    QFETCH(QStringList, typed);
    const auto call = parse_call(typed, small_table());
    QCOMPARE(call.error, QString());
    QTEST(text_of(call.value), "call");
}

void tst_parse_call::wrong_call_is_a_sentence_data() {
    QTest::addColumn<QStringList>("typed");
    QTest::addColumn<QString>("error");
    const auto row = [](const QStringList& _typed, const char* _error) {
        QTest::newRow(qPrintable(_typed.join(' '))) << _typed << QString(_error);
    };
    row({}, "A command is missing.");
    row({"sett", "i", "1"}, "There is no command \"sett\". Did you mean set?");
    row({"usr", "add", "x"}, "There is no command \"usr\". Did you mean user add?");
    row({"secrat"}, "There is no command \"secrat\".");
    row({"user"}, "user is followed by one of add, remove.");
    row({"set", "i"}, "Usage: torlanctl [--data DIR] set ITEM VALUE.");
    row({"set", "i", "1", "2"}, "Usage: torlanctl [--data DIR] set ITEM VALUE.");
    row({"list", "a", "b"}, "Usage: torlanctl [--data DIR] list [KIND] [OPTIONS].");
    row({"set", "i", "1", "--json"}, "set has no option \"--json\".");
    row({"set", "i", "-x"}, "set has no option \"-x\".");
    row({"list", "--jsno"}, "list has no option \"--jsno\". Did you mean --json?");
    row({"list", "--json=1"}, "--json takes no value.");
    row({"user", "add", "x", "--file"}, "--file takes a value.");
    const char* const grant =
        "Usage: torlanctl [--data DIR] grant USER ELEMENT|--all|--type N PERMISSION.";
    row({"grant", "u", "e", "read", "--all"}, grant);
    row({"grant", "u", "read", "--all", "--type", "1"}, grant);
    row({"grant", "u", "read"}, grant);
}

void tst_parse_call::wrong_call_is_a_sentence() {
    QFETCH(QStringList, typed);
    QTEST(parse_call(typed, small_table()).error, "error");
}

void tst_parse_call::help_needs_no_arguments() {
    const auto command = parse_call({"set", "--help"}, small_table());
    QVERIFY(command.is_ok() && command.value.has("help"));
    QCOMPARE(command.value.command->name, "set");
    const auto group = parse_call({"user", "-h"}, small_table());
    QVERIFY(group.is_ok() && group.value.command == nullptr);
    QCOMPARE(group.value.group, "user");
    QVERIFY(parse_call({"-v"}, small_table()).value.has("version"));
}

void tst_parse_call::folder_is_var_unless_it_is_given() {
    QCOMPARE(parse_call({"list"}, small_table()).value.data, "var");
    QCOMPARE(parse_call({"list", "--data", "x"}, small_table()).value.data, "x");
}

QTEST_GUILESS_MAIN(tst_parse_call)
#include "tst_parse_call.moc"

#include <QTest>

#include "unit/apps/torlanctl/torlanctl_t.h"

/// Elements, items, scenarios and thermostats by their commands.
class tst_things : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void options_change_what_they_name_data();
    void options_change_what_they_name();
    void lists_show_each_thing_data();
    void lists_show_each_thing();
    void show_tells_all_and_who_refers();
    void refusal_is_one_sentence_data();
    void refusal_is_one_sentence();

 private:
    /// The thing as "show --json" has it.
    QString shown(const QStringList& _words) const {
        return (*torlanctl)({_words[0], "show", _words[2], "--json"}).output.trimmed();
    }

    std::unique_ptr<torlanctl_t> torlanctl;
};

void tst_things::init() {
    torlanctl = std::make_unique<torlanctl_t>();
    QCOMPARE(torlanctl->import_small_home().status, 0);
}

void tst_things::options_change_what_they_name_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("shown");
    const auto row = [](const QStringList& _arguments, const char* _shown) {
        QTest::newRow(qPrintable(_arguments.join(' '))) << _arguments << QString(_shown);
    };
    row({"element", "add", "e-x", "--type", "-2", "--name", "A b", "--flags", "4", "f=i-lamp",
         "g="},
        R"#({"element":"e-x","flags":4,"functions":{"f":"i-lamp","g":null},"name":"A b","type":-2})#");
    row({"element", "set", "e-lamp", "--name", "", "a=b=i-win", "--without", "dim"},
        R"#({"element":"e-lamp","flags":0,"functions":{"a=b":"i-win","execute":"i-lamp"},"name":"","type":1})#");
    row({"element", "set", "e-night", "--scenario", ""},
        R"#({"element":"e-night","flags":0,"name":"Good night","scenario":"","type":8})#");
    row({"item", "add", "i-x", "--value", "-5", "--writable", "no"},
        R"#({"item":"i-x","value":"-5","writable":false})#");
    row({"item", "set", "i-lamp", "--min", "-1.5", "--max", "3", "--step", "0.5"},
        R"#({"item":"i-lamp","max":3,"min":-1.5,"step":0.5,"used_by":["element e-lamp (execute)"],"value":"0"})#");
    row({"item", "set", "i-dim", "--knx-type", "5.001", "--knx-write", "1/2/3", "--knx-status",
         "1/2/4,1/2/5", "--knx-read", "no", "--knx-answer", "yes"},
        R"#({"item":"i-dim","knx":{"answer":true,"dpt":"5.001","read":false,"status":["1/2/4","1/2/5"],"write":"1/2/3"},"used_by":["element e-lamp (dim)"],"value":"40"})#");
    row({"scenario", "add", "s-x", "--knx-type", "18.001", "--knx-write", "0/0/9", "--knx-scene",
         "3"},
        R"#({"execution":false,"knx":{"dpt":"18.001","scene":3,"write":"0/0/9"},"scenario":"s-x"})#");
    row({"thermostat", "add", "t-x", "setpoint=i-set", "--actual", "i-temp"},
        R"#({"id_actual":"i-temp","ids":{"setpoint":"i-set"},"thermostat":"t-x"})#");
    row({"thermostat", "set", "t-living", "--windows-contact", "", "mode=", "--without",
         "setpoint"},
        R"#({"id_actual":"i-temp","ids":{"mode":null},"thermostat":"t-living","used_by":["element e-therm"]})#");
}

void tst_things::options_change_what_they_name() {
    QFETCH(QStringList, arguments);
    const call_t call = (*torlanctl)(arguments);
    QCOMPARE(call.error, QString());
    QCOMPARE(call.status, 0);
    QTEST(shown(arguments), "shown");
}

void tst_things::lists_show_each_thing_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("first");
    QTest::addColumn<int>("lines");
    QTest::newRow("element") << "element"
                             << "e-lamp                            1  Kitchen lamp" << 3;
    QTest::newRow("item") << "item"
                          << "i-dim                           40" << 5;
    QTest::newRow("scenario") << "scenario"
                              << "s-night" << 1;
    QTest::newRow("thermostat") << "thermostat"
                                << "t-living                        setpoint" << 1;
}

void tst_things::lists_show_each_thing() {
    QFETCH(QString, kind);
    const QStringList lines = (*torlanctl)({kind, "list"}).output.split('\n');
    QTEST(lines[0], "first");
    QTEST(int(lines.size()) - 1, "lines");
    const QStringList json = (*torlanctl)({kind, "list", "--json"}).output.split('\n');
    QCOMPARE(json.size(), lines.size());
    QVERIFY(json[0].startsWith('{') && json[0].contains(lines[0].section(' ', 0, 0)));
}

void tst_things::show_tells_all_and_who_refers() {
    QCOMPARE((*torlanctl)({"item", "show", "i-lamp"}).output,
             "item                        i-lamp\n"
             "used_by                     [\"element e-lamp (execute)\"]\n"
             "value                       0\n");
}

void tst_things::refusal_is_one_sentence_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("status");
    const auto row = [](const QStringList& _arguments, const QString& _error, int _status = 1) {
        QTest::newRow(qPrintable(_arguments.join(' '))) << _arguments << _error << _status;
    };
    row({"element", "add", "e-x"}, "A new element needs --type N. See torlanctl --help.", 2);
    row({"element", "add", "e-x", "--type", "one"}, "--type takes a whole number, not \"one\".");
    row({"element", "set", "e-lamp", "execute"}, "\"execute\" is no FUNCTION=ITEM.");
    row({"element", "set", "e-lamp", "=i-lamp"}, "\"=i-lamp\" is no FUNCTION=ITEM.");
    row({"element", "set", "e-lamp", "--without", "x"}, "There is no \"x\" to take out.");
    row({"element", "show", "e-x"}, "There is no element e-x.");
    row({"element", "remove", "e-x"}, "There is no element e-x.");
    row({"item", "set", "i-lamp", "--min", "low"}, "--min takes a number or none, not \"low\".");
    row({"item", "set", "i-lamp", "--max", "nan"}, "--max takes a number or none, not \"nan\".");
    row({"item", "set", "i-lamp", "--writable", "0"}, "--writable takes yes or no, not \"0\".");
    row({"item", "set", "i-lamp", "--knx-type", "1.001", "--knx-write", "x"},
        "i-lamp/knx/write: must be a group address such as \"1/2/3\", \"1/515\" or \"2563\".");
    row({"item", "remove", "i-lamp"}, "The item i-lamp is used by element e-lamp (execute).");
    row({"scenario", "rename", "s-night", "s/x"},
        "The scenario's identifier \"s/x\" must be 1 to 64 of the characters 0-9 a-z A-Z . _ -.");
}

void tst_things::refusal_is_one_sentence() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const auto before = torlanctl->stored();
    const call_t call = (*torlanctl)(arguments);
    QCOMPARE(call.error, "torlanctl: " + error);
    QTEST(call.status, "status");
    QVERIFY(torlanctl->stored() == before);
}

QTEST_GUILESS_MAIN(tst_things)
#include "tst_things.moc"

#include "api/written_value.h"

#include <QTest>

#include "base/json_text.h"

using namespace torlan;

class tst_written_value : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void typed_words_are_taken_apart_data() {
        QTest::addColumn<QStringList>("typed");
        QTest::addColumn<QStringList>("parts");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* _name, const QStringList& _typed, const QStringList& _parts,
                            const QString& _error = {}) {
            QTest::newRow(_name) << _typed << _parts << _error;
        };
        row("one", {"execute=1"}, {"execute", "1"});
        row("two", {"execute=1", "level=-5"}, {"execute", "1", "level", "-5"});
        row("function of a path", {"thermo/setpoint=21.5"}, {"thermo/setpoint", "21.5"});
        row("the first sign counts", {"f=a=b"}, {"f", "a=b"});
        row("no value", {"f="}, {"f", ""});
        row("none", {}, {}, "A FUNCTION=VALUE is missing.");
        row("no sign", {"execute"}, {}, "\"execute\" is no FUNCTION=VALUE.");
        row("no function", {"=1"}, {}, "\"=1\" is no FUNCTION=VALUE.");
        row("twice", {"f=1", "f=2"}, {}, "\"f\" is given twice.");
        row("steers no terminal", {"\x1b[31m"}, {}, "\"?[31m\" is no FUNCTION=VALUE.");
    }
    void typed_words_are_taken_apart() {
        QFETCH(QStringList, typed);
        const auto assignments = assignments_of(typed);
        QTEST(assignments.error, "error");
        QStringList parts;
        for (const assignment_t& each : assignments.value) {
            parts << each.function << each.value;
        }
        QTEST(parts, "parts");
    }

    void value_is_written_so_that_it_can_be_taken_data() {
        QTest::addColumn<QByteArray>("json");
        const auto row = [](const char* _typed, const char* _json) {
            QTest::newRow(_typed) << QByteArray(_json).replace('\'', '"');
        };
        row("1", "'1'");
        row("0", "'0'");
        row("007", "'007'");
        row("12345678901234567890", "'12345678901234567890'");
        row("21.5", "21.5");
        row("-5", "-5");
        row("1e1", "10");
        row("true", "true");
        row("false", "false");
        row("eco", "'eco'");
        row("", "''");
        row("+5", "'+5'");
        row("null", "'null'");
        row("[]", "'[]'");
        row("1,2", "'1,2'");
    }
    void value_is_written_so_that_it_can_be_taken() {
        QTEST(base::json_to_text(written_value(QTest::currentDataTag())), "json");
    }

    void what_comes_is_known_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("comes");
        const auto row = [](const char* _typed, const char* _value, bool _comes) {
            QTest::addRow("%s, then %s", _typed, _value)
                << QString(_typed) << QString(_value) << _comes;
        };
        row("1", "1", true);
        row("1", "true", true);
        row("true", "1", true);
        row("true", "true", true);
        row("0", "false", true);
        row("false", "0", true);
        row("1", "0", false);
        row("true", "false", false);
        row("1", "", false);
        row("21.5", "21.5", true);
        row("21.50", "21.5", true);
        row("1e1", "10", true);
        row("-5", "-5", true);
        row("1234567.891", "1.23457e+06", true);
        row("1234567", "1234567", true);
        row("1234567", "1.23457e+06", false);
        row("007", "007", true);
        row("30", "3", false);
        row("1.0", "true", true);
    }
    void what_comes_is_known() {
        QFETCH(QString, typed);
        QFETCH(QString, value);
        QTEST(comes_of(value, typed), "comes");
    }
};

QTEST_GUILESS_MAIN(tst_written_value)
#include "tst_written_value.moc"

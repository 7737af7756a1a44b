#include <QTest>
#include <type_traits>

#include "drivers/plugins/plugin_driver_api/data/type_source_exec_cmd_t.h"

using cmd_t = interfaces::type_source_exec_cmd_t;

class tst_type_source_exec_cmd_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    // Runs first: nothing but the constants has been constructed.
    void initTestCase() {
        QCOMPARE(cmd_t::maxI, 9);
        QCOMPARE(cmd_t::map.size(), 9);
    }

    void constants_have_names_and_numbers_data() {
        QTest::addColumn<const cmd_t*>("constant");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("name");
        const auto row = [](const char* name, const cmd_t* constant, int number) {
            QTest::newRow(name) << constant << number << QString::fromLatin1(name);
        };
        row("user", &cmd_t::user, 0);
        row("system", &cmd_t::system, 1);
        row("scene", &cmd_t::scene, 2);
        row("scheduler", &cmd_t::scheduler, 3);
        row("rule", &cmd_t::rule, 4);
        row("thermo", &cmd_t::thermo, 5);
        row("lockfunction", &cmd_t::lockfunction, 6);
        row("presencesimulation", &cmd_t::presencesimulation, 7);
        row("unknown", &cmd_t::unknown, 8);
    }
    void constants_have_names_and_numbers() {
        QFETCH(const cmd_t*, constant);
        QFETCH(const QString, name);
        QCOMPARE(constant->ToString(), name);
        QTEST(constant->number(), "number");
        QCOMPARE(cmd_t::map.value(name), constant);
        const int next = cmd_t::maxI;
        const cmd_t parsed = cmd_t::fromString(name);
        QVERIFY(parsed == *constant);
        QTEST(parsed.number(), "number");
        QCOMPARE(cmd_t::maxI, next);
    }

    void another_text_is_unknown_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("other case") << "User";
        QTest::newRow("empty") << "";
        QTest::newRow("null") << QString();
        QTest::newRow("blank behind") << "user ";
        QTest::newRow("foreign") << "nobody";
    }
    void another_text_is_unknown() {
        QFETCH(const QString, text);
        const cmd_t parsed = cmd_t::fromString(text);
        QVERIFY(parsed == cmd_t::unknown);
        QCOMPARE(parsed.number(), 8);
    }

    void it_is_a_plain_value() { QVERIFY(!std::is_polymorphic_v<cmd_t>); }

    void default_value_consumes_a_number_and_is_not_registered() {
        const int next = cmd_t::maxI;
        const qsizetype registered = cmd_t::map.size();
        const cmd_t one;
        const cmd_t two;
        QCOMPARE(one.number(), next);
        QCOMPARE(two.number(), next + 1);
        QCOMPARE(cmd_t::maxI, next + 2);
        QCOMPARE(cmd_t::map.size(), registered);
        QVERIFY(one.ToString().isNull());
        QVERIFY(one.is(QString("")));
        QVERIFY(one == two);
    }

    void named_value_registers_itself_and_the_latest_wins() {
        const int next = cmd_t::maxI;
        static const cmd_t first(QStringLiteral("gateway"));
        static const cmd_t second(QStringLiteral("gateway"));
        QCOMPARE(cmd_t::map.value("gateway"), &second);
        QCOMPARE(cmd_t::fromString("gateway").number(), next + 1);
        QVERIFY(first == second);
    }

    void copy_keeps_the_number_and_consumes_none() {
        const int next = cmd_t::maxI;
        const cmd_t copy(cmd_t::thermo);
        QCOMPARE(copy.number(), 5);
        QVERIFY(copy == cmd_t::thermo);
        QCOMPARE(cmd_t::maxI, next);
        QCOMPARE(cmd_t::map.value("thermo"), &cmd_t::thermo);
    }

    void assignment_takes_the_name_only() {
        cmd_t value(cmd_t::user);
        value = cmd_t::scene;
        QVERIFY(value == cmd_t::scene);
        QVERIFY(value != cmd_t::user);
        QCOMPARE(value.number(), 0);
        const cmd_t& same = value;
        value = same;
        QCOMPARE(value.ToString(), QStringLiteral("scene"));
    }

    void destruction_leaves_the_map_alone() {
        const qsizetype registered = cmd_t::map.size();
        {
            const cmd_t gone(QStringLiteral("gone"));
            const cmd_t copy(cmd_t::user);
            const cmd_t parsed = cmd_t::fromString(QStringLiteral("scene"));
        }
        QCOMPARE(cmd_t::map.size(), registered + 1);
        QVERIFY(cmd_t::map.contains("gone"));
        QCOMPARE(cmd_t::map.value("user"), &cmd_t::user);
        QCOMPARE(cmd_t::map.value("scene"), &cmd_t::scene);
    }

    void comparison_is_by_name_and_case_sensitive() {
        QVERIFY(cmd_t::user != cmd_t::system);
        QVERIFY(!(cmd_t::user == cmd_t::system));
        QVERIFY(!(cmd_t::user != cmd_t::user));
        QVERIFY(cmd_t::user.is(QStringLiteral("user")));
        QVERIFY(!cmd_t::user.is(QStringLiteral("USER")));
        QVERIFY(cmd_t::user.is(cmd_t::user));
        QVERIFY(!cmd_t::user.is(cmd_t::system));
    }
};

QTEST_GUILESS_MAIN(tst_type_source_exec_cmd_t)
#include "tst_type_source_exec_cmd_t.moc"

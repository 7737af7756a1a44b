#include <QTest>
#include <type_traits>

#include "utility/type_configuration_mode_t.h"

using utility::type_configuration_mode_t;

class tst_type_configuration_mode_t : public QObject {
    Q_OBJECT

    using mode_t_ = type_configuration_mode_t;

 private Q_SLOTS:
    // Runs first: nothing but the constants has been constructed.
    void initTestCase() {
        QCOMPARE(mode_t_::maxI, 2);
        QCOMPARE(mode_t_::map.size(), 2);
    }

    void constants_have_names_and_numbers() {
        QCOMPARE(mode_t_::http.ToString(), QStringLiteral("http"));
        QCOMPARE(mode_t_::file.ToString(), QStringLiteral("file"));
        QCOMPARE(mode_t_::http.number(), 0);
        QCOMPARE(mode_t_::file.number(), 1);
        QCOMPARE(mode_t_::map.value("http"), &mode_t_::http);
        QCOMPARE(mode_t_::map.value("file"), &mode_t_::file);
    }

    void it_is_a_plain_value() { QVERIFY(!std::is_polymorphic_v<mode_t_>); }

    void default_value_consumes_a_number_and_is_not_registered() {
        const int next = mode_t_::maxI;
        const qsizetype registered = mode_t_::map.size();
        const mode_t_ one;
        const mode_t_ two;
        QCOMPARE(one.number(), next);
        QCOMPARE(two.number(), next + 1);
        QCOMPARE(mode_t_::maxI, next + 2);
        QCOMPARE(mode_t_::map.size(), registered);
        QVERIFY(one.ToString().isNull());
        QVERIFY(one.is(QString("")));
        QVERIFY(one == two);
    }

    void named_value_registers_itself_and_the_latest_wins() {
        const int next = mode_t_::maxI;
        static const mode_t_ first(QStringLiteral("cloud"));
        QCOMPARE(mode_t_::map.value("cloud"), &first);
        static const mode_t_ second(QStringLiteral("cloud"));
        QCOMPARE(mode_t_::map.value("cloud"), &second);
        QCOMPARE(second.number(), next + 1);
        QVERIFY(first == second);
    }

    void copy_keeps_the_number_and_consumes_none() {
        const int next = mode_t_::maxI;
        const mode_t_ copy(mode_t_::file);
        QCOMPARE(copy.number(), 1);
        QVERIFY(copy == mode_t_::file);
        QCOMPARE(mode_t_::maxI, next);
        QCOMPARE(mode_t_::map.value("file"), &mode_t_::file);
    }

    void assignment_takes_the_name_only() {
        mode_t_ value(mode_t_::http);
        value = mode_t_::file;
        QVERIFY(value == mode_t_::file);
        QCOMPARE(value.number(), 0);
        const mode_t_& same = value;
        value = same;
        QCOMPARE(value.ToString(), QStringLiteral("file"));
    }

    void comparison_is_by_name_and_case_sensitive() {
        QVERIFY(mode_t_::http != mode_t_::file);
        QVERIFY(!(mode_t_::http == mode_t_::file));
        QVERIFY(!(mode_t_::http != mode_t_::http));
        QVERIFY(mode_t_::http.is(QStringLiteral("http")));
        QVERIFY(!mode_t_::http.is(QStringLiteral("HTTP")));
        QVERIFY(mode_t_::http.is(mode_t_::http));
        QVERIFY(!mode_t_::http.is(mode_t_::file));
    }

    void destruction_leaves_the_map_alone() {
        const qsizetype registered = mode_t_::map.size();
        { const mode_t_ gone(QStringLiteral("gone")); }
        QCOMPARE(mode_t_::map.size(), registered + 1);
        QVERIFY(mode_t_::map.contains("gone"));
    }
};

QTEST_GUILESS_MAIN(tst_type_configuration_mode_t)
#include "tst_type_configuration_mode_t.moc"

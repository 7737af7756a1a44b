#include "api/readings_t.h"

#include <QJsonDocument>
#include <QTest>

using namespace torlan;

class tst_readings_t : public QObject {
    Q_OBJECT

    using changes_t = readings_t::changes_t;

    static QJsonObject data(const QMap<QString, QString>& _values) {
        QJsonObject functions;
        for (auto each = _values.begin(); each != _values.end(); ++each) {
            functions.insert(each.key(), QJsonObject{{"value", each.value()}});
        }
        return {{"functions", functions}};
    }

 private Q_SLOTS:
    void states_are_merged_function_by_function() {
        readings_t readings;
        QCOMPARE(readings.take_all({{"e", data({{"execute", "0"}, {"level", "40"}})}}),
                 (changes_t{{"e", "execute", "0"}, {"e", "level", "40"}}));
        QCOMPARE(readings.take_state("e", data({{"level", "30"}})),
                 (changes_t{{"e", "level", "30"}}));
        QCOMPARE(readings.values("e"), (readings_t::values_t{{"execute", "0"}, {"level", "30"}}));
    }

    void what_stays_is_no_change() {
        readings_t readings;
        readings.take_state("e", data({{"execute", "0"}}));
        QCOMPARE(readings.take_state("e", data({{"execute", "0"}})), changes_t());
        QCOMPARE(readings.take_all({{"e", data({{"execute", "0"}})}}), changes_t());
    }

    void value_that_is_not_known_yet_is_a_change_though_empty() {
        readings_t readings;
        QCOMPARE(readings.take_state("e", data({{"power", ""}})), (changes_t{{"e", "power", ""}}));
    }

    void withdrawn_element_is_gone_once() {
        readings_t readings;
        readings.take_state("e", data({{"execute", "0"}}));
        QCOMPARE(readings.take_state("e", {}), (changes_t{{"e"}}));
        QCOMPARE(readings.take_state("e", {}), changes_t());
        QVERIFY(readings.values("e").isEmpty());
    }

    void answer_takes_away_what_it_does_not_name() {
        readings_t readings;
        readings.take_state("e", data({{"execute", "0"}}));
        readings.begin_read();
        QCOMPARE(readings.take_all({}), (changes_t{{"e"}}));
    }

    void what_comes_between_question_and_answer_is_newer() {
        readings_t readings;
        readings.take_all(
            {{"e", data({{"execute", "0"}, {"level", "40"}})}, {"gone", data({{"execute", "0"}})}});
        readings.begin_read();
        readings.take_state("e", data({{"level", "30"}}));
        readings.take_state("new", data({{"execute", "1"}}));
        readings.take_state("gone", {});
        QCOMPARE(readings.take_all({{"e", data({{"execute", "1"}, {"level", "40"}})},
                                    {"gone", data({{"execute", "0"}})}}),
                 (changes_t{{"e", "execute", "1"}}));
        QCOMPARE(readings.values("e").value("level"), "30");
        QCOMPARE(readings.values("new").value("execute"), "1");
        QVERIFY(readings.values("gone").isEmpty());
    }

    void element_that_came_back_while_reading_is_there() {
        readings_t readings;
        readings.begin_read();
        readings.take_state("e", {});
        readings.take_state("e", data({{"execute", "1"}}));
        readings.take_all({{"e", data({{"execute", "0"}, {"level", "40"}})}});
        QCOMPARE(readings.values("e"), (readings_t::values_t{{"execute", "1"}, {"level", "40"}}));
    }
};

QTEST_GUILESS_MAIN(tst_readings_t)
#include "tst_readings_t.moc"

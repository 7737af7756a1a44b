#include <QElapsedTimer>
#include <QJsonArray>
#include <QTest>

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "drivers/plugins/plugin_driver_api/data/element_filter_t.h"
#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"
#include "fakes/memory_database_t.h"

using interfaces::element_filter_t;

class tst_element_filter_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void types_data() {
        QTest::addColumn<QJsonValue>("types");
        QTest::addColumn<bool>("passes_8");
        QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined) << true;
        QTest::newRow("null") << QJsonValue() << true;
        QTest::newRow("no array") << QJsonValue(17) << true;
        QTest::newRow("empty") << QJsonValue(QJsonArray{}) << true;
        QTest::newRow("it") << QJsonValue(QJsonArray{8}) << true;
        QTest::newRow("among others") << QJsonValue(QJsonArray{1, 17, 8}) << true;
        QTest::newRow("as a fraction's whole") << QJsonValue(QJsonArray{8.0}) << true;
        QTest::newRow("another") << QJsonValue(QJsonArray{17}) << false;
        QTest::newRow("nearly") << QJsonValue(QJsonArray{8.5}) << false;
        QTest::newRow("text") << QJsonValue(QJsonArray{"8"}) << false;
        QTest::newRow("true") << QJsonValue(QJsonArray{true}) << false;
        QTest::newRow("null in it") << QJsonValue(QJsonArray{QJsonValue()}) << false;
        QJsonArray list_in_it;
        list_in_it.append(QJsonArray{8});  // braces around a list copy it with clang
        QTest::newRow("list in it") << QJsonValue(list_in_it) << false;
    }
    void types() {
        QFETCH(QJsonValue, types);
        QFETCH(bool, passes_8);
        QJsonObject filter;
        if (!types.isUndefined()) {
            filter.insert("types", types);
        }
        QCOMPARE(element_filter_t(filter).passes_type(8), passes_8);
    }

    void functions_data() {
        QTest::addColumn<QJsonValue>("functions");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("passes");
        const auto list = [](std::initializer_list<QJsonValue> _entries) {
            return QJsonValue(QJsonArray(_entries));
        };
        QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined) << "execute" << true;
        QTest::newRow("no array") << QJsonValue("execute") << "move" << true;
        QTest::newRow("empty") << list({}) << "execute" << true;
        QTest::newRow("it") << list({"execute"}) << "execute" << true;
        QTest::newRow("among others") << list({"a", 3, "execute"}) << "execute" << true;
        QTest::newRow("last segment") << list({"setpoint"}) << "thermo/setpoint" << true;
        QTest::newRow("whole name") << list({"thermo/setpoint"}) << "thermo/setpoint" << false;
        QTest::newRow("other case") << list({"Execute"}) << "execute" << false;
        QTest::newRow("number only") << list({3}) << "3" << false;
        QTest::newRow("empty segment") << list({""}) << "thermo/" << true;
    }
    void functions() {
        QFETCH(QJsonValue, functions);
        QFETCH(QString, name);
        QFETCH(bool, passes);
        QJsonObject filter;
        if (!functions.isUndefined()) {
            filter.insert("functions", functions);
        }
        QCOMPARE(element_filter_t(filter).passes_function(name), passes);
    }

    void without_a_filter_everything_passes() {
        QVERIFY(element_filter_t().passes_type(-1));
        QVERIFY(element_filter_t().passes_function(""));
    }

    // What a list costs must not be multiplied by the elements: 1,000 of them cost less than making
    // the filter five times over.
    void a_long_list_is_gone_through_once() {
        fakes::memory_database_t database;
        database.add_user("u", "alice");
        for (int i = 0; i < 1000; ++i) {
            const QString id = QStringLiteral("e-%1").arg(i);
            database.add_item("i" + id, "1");
            database.add_element(id, "Lamp", 1, {{"execute", "i" + id}});
            database.grant("u", id, 1);
        }
        interfaces::data_api_elements_t elements(database.get(), nullptr);
        elements.setEnabled(true);
        QJsonArray types;
        QJsonArray functions;
        for (int i = 0; i < 50'000; ++i) {
            types.append(1000 + i);
            functions.append(QStringLiteral("function-%1").arg(i));
        }
        for (const QJsonObject& filter :
             {QJsonObject{{"types", types}}, QJsonObject{{"functions", functions}}}) {
            QElapsedTimer clock;
            clock.start();
            for (int i = 0; i < 5; ++i) {
                const element_filter_t made(filter);
                QVERIFY(!made.passes_type(1) || !made.passes_function("execute"));
            }
            const qint64 five_filters_ns = clock.nsecsElapsed();
            clock.restart();
            QVERIFY(interfaces::v1::to_json(elements, "alice", filter).isEmpty());
            QVERIFY2(clock.nsecsElapsed() < five_filters_ns,
                     qPrintable(QStringLiteral("%1 against %2 ns")
                                    .arg(clock.nsecsElapsed())
                                    .arg(five_filters_ns)));
        }
    }
};

QTEST_GUILESS_MAIN(tst_element_filter_t)
#include "tst_element_filter_t.moc"

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/request_validation.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

namespace {

/// A JSON text of any kind as a value.
QJsonValue value_of(const QByteArray& _text) {
    return QJsonDocument::fromJson('[' + _text + ']').array().at(0);
}

void rows(const std::initializer_list<std::pair<const char*, int>>& _rows) {
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("expected");
    for (const auto& [payload, expected] : _rows) {
        QTest::newRow(payload) << QByteArray(payload) << expected;
    }
}

}  // namespace

class tst_request_validation : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void filters_data() {
        rows({{R"({})", 0},
              {R"(null)", 0},
              {R"(7)", 0},
              {R"("filters")", 0},
              {R"([])", 0},
              {R"([{"filters":{"types":[1]}}])", 0},
              {R"({"uuid":"1"})", 0},
              {R"({"functions":["x"]})", 0},
              {R"({"Filters":{"types":"x"}})", 0},
              {R"({"filters":null})", 0},
              {R"({"filters":"x"})", 0},
              {R"({"filters":7})", 0},
              {R"({"filters":[]})", 0},
              {R"({"filters":["types"]})", 0},
              {R"({"filters":{}})", 1},
              {R"({"filters":{"other":[]}})", 1},
              {R"({"filters":{"types":[1]}})", 1},
              {R"({"filters":{"functions":["execute"]}})", 1},
              {R"({"filters":{"functions":["execute"],"types":[1,2]}})", 1},
              {R"({"filters":{"functions":[7],"types":["light"]}})", 1},
              {R"({"filters":{"functions":[null]}})", 1},
              {R"({"filters":{"functions":[]}})", -1},
              {R"({"filters":{"types":[]}})", -1},
              {R"({"filters":{"types":"light"}})", -1},
              {R"({"filters":{"functions":"execute"}})", -1},
              {R"({"filters":{"types":1}})", -1},
              {R"({"filters":{"types":null}})", -1},
              {R"({"filters":{"types":{"a":1}}})", -1},
              {R"({"filters":{"functions":["x"],"types":[]}})", -1},
              {R"({"filters":{"functions":[],"types":[1]}})", -1}});
    }
    void filters() {
        QFETCH(QByteArray, payload);
        QFETCH(int, expected);
        QCOMPARE(interfaces::check_data_request_filters(value_of(payload)), expected);
    }

    void one_element_data() {
        rows({{R"({"data":{"functions":{"execute":1}}})", 1},
              {R"({"data":{"functions":{"execute":null}}})", 1},
              {R"({"data":{"functions":{"execute":1},"more":2},"uuid":"x"})", 1},
              {R"({})", 0},
              {R"(null)", 0},
              {R"(7)", 0},
              {R"([{"data":{"functions":{"execute":1}}}])", 0},
              {R"({"functions":{"execute":1}})", 0},
              {R"({"data":null})", 0},
              {R"({"data":"x"})", 0},
              {R"({"data":[]})", 0},
              {R"({"data":{}})", 0},
              {R"({"data":{"execute":1}})", 0},
              {R"({"data":{"functions":null}})", 0},
              {R"({"data":{"functions":["execute"]}})", 0},
              {R"({"data":{"functions":"execute"}})", 0},
              {R"({"data":{"functions":{}}})", 0},
              {R"({"Data":{"functions":{"execute":1}}})", 0}});
    }
    void one_element() {
        QFETCH(QByteArray, payload);
        QFETCH(int, expected);
        QCOMPARE(interfaces::check_data_request_element(value_of(payload)), expected == 1);
    }

    void several_elements_data() {
        rows({{R"({"data":{"a":{"functions":{"execute":1}}}})", 1},
              {R"({"data":{"a":{"functions":{"x":1}},"b":{"functions":{"y":2}}}})", 1},
              {R"({"data":{}})", 1},
              {R"({})", 0},
              {R"(null)", 0},
              {R"([])", 0},
              {R"({"a":{"functions":{"x":1}}})", 0},
              {R"({"data":null})", 0},
              {R"({"data":[]})", 0},
              {R"({"data":[{"functions":{"x":1}}]})", 0},
              {R"({"data":"x"})", 0},
              {R"({"data":{"a":{}}})", 0},
              {R"({"data":{"a":null}})", 0},
              {R"({"data":{"a":7}})", 0},
              {R"({"data":{"a":{"functions":{}}}})", 0},
              {R"({"data":{"a":{"functions":[]}}})", 0},
              {R"({"data":{"functions":{"execute":1}}})", 0},
              {R"({"data":{"a":{"functions":{"x":1}},"b":{}}})", 0},
              {R"({"data":{"a":{},"b":{"functions":{"x":1}}}})", 0}});
    }
    void several_elements() {
        QFETCH(QByteArray, payload);
        QFETCH(int, expected);
        QCOMPARE(interfaces::check_data_request_elements(value_of(payload)), expected == 1);
    }
};

QTEST_GUILESS_MAIN(tst_request_validation)
#include "tst_request_validation.moc"

#include "api/element_text.h"

#include <QJsonDocument>
#include <QTest>

#include "base/json_text.h"

using namespace torlan;

class tst_element_text : public QObject {
    Q_OBJECT

    static QJsonObject lamp(const QString& _name, const QString& _value) {
        return {{"name", _name},
                {"type", 2},
                {"functions", QJsonObject{{"execute", QJsonObject{{"value", "1"}}},
                                          {"level", QJsonObject{{"value", _value}}}}}};
    }

 private Q_SLOTS:
    void functions_stand_below_the_element() {
        QCOMPARE(element_text("e-lamp", lamp("Lamp", "40")),
                 "e-lamp  Lamp\n  execute: 1\n  level: 40\n");
    }
    void nothing_steers_a_terminal() {
        QCOMPARE(element_text("e-lamp", lamp("\x1b[2J", "\r\n")),
                 "e-lamp  ?[2J\n  execute: 1\n  level: ??\n");
    }
    void json_has_values_as_they_are() {
        QCOMPARE(base::json_to_text(element_json("e-lamp", lamp("Lamp", "\r"))),
                 QByteArray(R"({"element":"e-lamp","functions":{"execute":"1","level":"\r"},)"
                            R"("name":"Lamp","type":2})"));
    }
};

QTEST_GUILESS_MAIN(tst_element_text)
#include "tst_element_text.moc"

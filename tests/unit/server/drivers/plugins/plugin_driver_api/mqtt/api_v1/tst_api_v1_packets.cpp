#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/api_v1_packets.h"

#include <QJsonDocument>
#include <QTest>

namespace v1 = interfaces::v1;

class tst_api_v1_packets : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void packets_data() {
        QTest::addColumn<QJsonObject>("packet");
        QTest::addColumn<QByteArray>("text");
        const auto row = [](const QJsonObject& packet, const char* text) {
            QTest::newRow(text) << packet << QByteArray(text);
        };
        const QString id = QStringLiteral("e-1");
        row(v1::data_packet({}), R"({"data":{}})");
        row(v1::data_packet({{id, 1}}), R"({"data":{"e-1":1}})");
        row(v1::update_packet({{id, 1}}), R"({"data":{"e-1":1}})");
        row(v1::update_packet({}), R"({})");
        row(v1::non_compliant_topic(), R"({"error":400,"message":"Non-compliant topic"})");
        row(v1::non_compliant_payload(), R"({"error":400,"message":"Non-compliant payload"})");
        row(v1::unauthorized_user(),
            R"({"error":401,"message":"Unauthorized user: configure user API on App"})");
        row(v1::not_found_element(id), R"({"error":404,"message":"Not found element e-1"})");
        row(v1::non_found_element(id), R"({"error":404,"message":"Non found element e-1"})");
        row(v1::topic_not_valid(), R"({"error":405,"message":"Topic not valid"})");
        row(v1::presentation_required(), R"({"error":406,"message":"Presentation required"})");
        row(v1::filter_type_error(), R"({"error":409,"message":"Filter type error"})");
        row(v1::error_packet({{QStringLiteral("a"), 1}}, 7, QStringLiteral("text")),
            R"({"a":1,"error":7,"message":"text"})");
        row(v1::error_packet({{QStringLiteral("error"), 1}}, 7, QStringLiteral("text")),
            R"({"error":7,"message":"text"})");
    }
    void packets() {
        QFETCH(QJsonObject, packet);
        QFETCH(QByteArray, text);
        QCOMPARE(QJsonDocument(packet).toJson(QJsonDocument::Compact), text);
    }
};

QTEST_GUILESS_MAIN(tst_api_v1_packets)
#include "tst_api_v1_packets.moc"

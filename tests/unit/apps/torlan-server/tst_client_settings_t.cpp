#include "client_settings_t.h"

#include <QJsonDocument>
#include <QTest>

#include "http/http_t.h"
#include "kit/http_server_t.h"
#include "utility/cnfserver.h"

using kit::http_server_t;
using torlan::client_settings_t;

namespace {

const QString broker_path = QStringLiteral("static/torlan/comunication/mqtt");
const QString id_path = QStringLiteral("static/torlan/comunication/global/installation_id/");

/// Settings whose part for clients is @p _part.
QJsonObject document(const QByteArray& _part) {
    return QJsonDocument::fromJson(R"({"static": {"torlan": {"comunication": )" + _part + "}}}")
        .object();
}

}  // namespace

class tst_client_settings_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_differs_is_told_data() {
        QTest::addColumn<QByteArray>("part");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QStringList>("paths");
        const QByteArray mqtt = R"("mqtt": {"host": "127.0.0.1", "port": 1883})";
        const QByteArray all = "{" + mqtt + R"(, "global": {"installation_id": "i"}})";
        QTest::newRow("all is there") << all << "i" << QStringList{};
        QTest::newRow("other port")
            << QByteArray(R"({"mqtt": {"host": "127.0.0.1", "port": 1884}})") << "i"
            << QStringList{broker_path};
        QTest::newRow("a WebSockets port that is none any more")
            << QByteArray(R"({"mqtt": {"host": "127.0.0.1", "port": 1883, "ws_port": 9}})") << "i"
            << QStringList{broker_path};
        QTest::newRow("other id") << all << "j" << QStringList{id_path};
        QTest::newRow("nothing yet")
            << QByteArray(R"({"global": {}})") << "i" << QStringList{broker_path, id_path};
        QTest::newRow("blank id") << QByteArray("{" + mqtt + R"(, "global": {}})") << "  "
                                  << QStringList{};
        QTest::newRow("no global object") << "{" + mqtt + "}"
                                          << "i" << QStringList{};
        QTest::newRow("no object") << QByteArray("1") << "i" << QStringList{};
    }
    void what_differs_is_told() {
        QFETCH(QByteArray, part);
        QFETCH(QString, id);
        QStringList paths;
        for (const auto& change : client_settings_t(document(part), 1883, 0).changes(id)) {
            paths.append(change.path);
        }
        QTEST(paths, "paths");
    }

    void the_broker_has_a_websockets_port_when_there_is_one() {
        const auto changes = client_settings_t(document("{}"), 1, 2).changes({});
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes[0].value,
                 (QJsonObject{{"host", "127.0.0.1"}, {"port", 1}, {"ws_port", 2}}));
    }

    void what_the_server_took_is_not_told_again_data() {
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<int>("puts");
        QTest::newRow("taken") << QByteArray("200 OK") << 2;
        QTest::newRow("refused") << QByteArray("500 Internal Server Error") << 4;
    }
    void what_the_server_took_is_not_told_again() {
        QFETCH(QByteArray, status);
        const http_server_t server(http_server_t::json("{}", status));
        QVERIFY(http_t::map_base(utility::cnfserver::base, server.port()));
        client_settings_t clients(document(R"({"global": {}})"), 1883, 0);
        clients.tell(QStringLiteral("i"));
        clients.tell(QStringLiteral("i"));
        QTEST(int(server.requests().size()), "puts");
        for (const auto& request : server.requests()) {
            QCOMPARE(request.method, QByteArray("PUT"));
        }
        QCOMPARE(server.requests()[1].target, "/" + id_path.toUtf8());
        QCOMPARE(server.requests()[1].body, QByteArray("\"i\""));
    }
};

QTEST_GUILESS_MAIN(tst_client_settings_t)
#include "tst_client_settings_t.moc"

#include "utility/http_read_config_server_t.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QPointer>
#include <QThread>

#include "unit/server/utility/support/client_test_t.h"
#include "unit/server/utility/support/fake_getprop_t.h"

using client_test::client_lines;
using client_test::document;
using client_test::entry_t;
using client_test::json;
using fakes::recording_logger_t;
using utility::http_read_config_server_t;
using utility::torlan_option_t;

class tst_http_read_config_server_t : public client_test_t {
    Q_OBJECT

 private Q_SLOTS:
    void init() { build(); }
    void cleanup() { take_down(); }

    void settings_are_copied_into_the_options() {
        serve(document(QStringLiteral("id-1"), folder()));
        QVERIFY(client->read_configuration());
        QCOMPARE(torlan_option_t::LogsFolder(), QStringLiteral("/l"));
        QCOMPARE(torlan_option_t::PluginFolder(), QStringLiteral("/p"));
        QCOMPARE(torlan_option_t::SystemCaCerts(), QStringLiteral("/ca"));
        const QStringList certificates{QStringLiteral("b.pem"), QString(), QStringLiteral("a.pem")};
        QCOMPARE(torlan_option_t::CaCertsFile(), certificates);
        QCOMPARE(torlan_option_t::ClientFolder(), folder());
        QCOMPARE(torlan_option_t::Serial(), QStringLiteral("S-77"));
        QCOMPARE(torlan_option_t::ProductName(), QStringLiteral("Box"));
        QCOMPARE(torlan_option_t::CloudService(), QStringLiteral("https://service"));
        QCOMPARE(torlan_option_t::CloudWeb(), QStringLiteral("https://web"));
        QCOMPARE(torlan_option_t::CloudMQTTUrl(), QStringLiteral("mqtts://cloud"));
        QCOMPARE(torlan_option_t::InstallationId(), QStringLiteral("id-1"));
    }

    void the_document_is_asked_for_once_at_the_root() {
        serve(document(QStringLiteral("id-1"), folder()));
        QVERIFY(client->read_configuration());
        const QList<config_server_t::request_t> requests = server->requests();
        QCOMPARE(requests.size(), 1);
        QCOMPARE(requests.constFirst().method, QByteArray("GET"));
        QCOMPARE(requests.constFirst().target, QByteArray("/"));
    }

    void a_second_read_replaces_everything() {
        serve(document(QStringLiteral("id-1"), folder()));
        QVERIFY(client->read_configuration());
        const QJsonObject second = document(QStringLiteral("id-2"), folder());
        serve(second);
        QVERIFY(client->read_configuration());
        QCOMPARE(torlan_option_t::CaCertsFile().size(), 3);
        QCOMPARE(torlan_option_t::InstallationId(), QStringLiteral("id-2"));

        serve({{QStringLiteral("installation"),
                QJsonObject{{QStringLiteral("installation_id"), QStringLiteral("id-3")}}},
               {QStringLiteral("static"),
                QJsonObject{{QStringLiteral("torlan"),
                             QJsonObject{{QStringLiteral("paths"),
                                          QJsonObject{{QStringLiteral("client_communication"),
                                                       folder()}}}}}}}});
        QVERIFY(client->read_configuration());
        QVERIFY(torlan_option_t::CaCertsFile().isEmpty());
        QCOMPARE(torlan_option_t::LogsFolder(), QString());
        QCOMPARE(torlan_option_t::Serial(), QString());
        QCOMPARE(client_file(), QJsonObject());
    }

    void a_document_without_settings_succeeds_with_empty_options() {
        if (QFile::exists(QStringLiteral("/config"))) {
            QSKIP("the client file would be written at the root of this machine");
        }
        serve(document(QStringLiteral("id-0"), folder()));
        QVERIFY(client->read_configuration());
        serve({{QStringLiteral("installation"),
                QJsonObject{{QStringLiteral("installation_id"), QStringLiteral("id-1")}}}});
        const recording_logger_t logger;
        QVERIFY(client->read_configuration());
        for (const QString& text : {torlan_option_t::LogsFolder(), torlan_option_t::PluginFolder(),
                                    torlan_option_t::SystemCaCerts(),
                                    torlan_option_t::ClientFolder(), torlan_option_t::Serial(),
                                    torlan_option_t::ProductName(), torlan_option_t::CloudService(),
                                    torlan_option_t::CloudWeb(), torlan_option_t::CloudMQTTUrl()}) {
            QCOMPARE(text, QString());
        }
        QVERIFY(torlan_option_t::CaCertsFile().isEmpty());
        QCOMPARE(torlan_option_t::InstallationId(), QStringLiteral("id-1"));
        const QList<entry_t> expected{
            {4, QStringLiteral("Save client configuration file to: /config/comunication.json"),
             QStringLiteral("generate_HTTP_ClientFileConfig")}};
        QCOMPARE(client_lines(logger), expected);
    }

    void certificates_that_are_no_list_leave_none() {
        serve(document(QStringLiteral("id-1"), folder()));
        QVERIFY(client->read_configuration());
        serve(
            json("{'installation':{'installation_id':'i'},"
                 "'static':{'torlan':{'paths':{'client_communication':'/none',"
                 "'cacerts':'a.pem'}}}}"));
        QVERIFY(client->read_configuration());
        QVERIFY(torlan_option_t::CaCertsFile().isEmpty());
    }

    void values_that_are_no_text_become_empty() {
        QJsonObject config = document(QStringLiteral("id-1"), folder());
        QJsonObject statics = config[QLatin1String("static")].toObject();
        statics[QLatin1String("drdconf")] = QJsonObject{{QStringLiteral("serial"), 77}};
        statics[QLatin1String("device")] = QStringLiteral("a scalar half way down");
        config[QLatin1String("static")] = statics;
        serve(config);
        QVERIFY(client->read_configuration());
        QCOMPARE(torlan_option_t::Serial(), QString());
        QCOMPARE(torlan_option_t::ProductName(), QStringLiteral("a scalar half way down"));
    }

    void without_a_document_nothing_changes_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("rest");

        const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: ";
        const QString empty = QStringLiteral(" json is empty");
        QTest::newRow("not found")
            << QByteArray("HTTP/1.1 404 Not Found\r\nContent-Length: 2\r\n\r\n{}") << QString();
        QTest::newRow("server error")
            << QByteArray("HTTP/1.1 500 Broken\r\nContent-Length: 9\r\n\r\n{\"a\":1}\r\n")
            << QString();
        QTest::newRow("not JSON") << head + "5\r\n\r\nhello" << QString();
        QTest::newRow("half a body") << head + "50\r\n\r\n{\"a\":1}" << QString();
        QTest::newRow("closed") << QByteArray() << QString();
        QTest::newRow("empty object") << head + "2\r\n\r\n{}" << empty;
        QTest::newRow("array") << head + "3\r\n\r\n[1]" << empty;
        QTest::newRow("scalar") << head + "1\r\n\r\n5" << empty;
    }

    void without_a_document_nothing_changes() {
        QFETCH(const QByteArray, answer);
        QFETCH(const QString, rest);
        serve(document(QStringLiteral("id-1"), folder()));
        QVERIFY(client->read_configuration());
        QVERIFY(QFile::remove(file_name()));

        server->answer_raw("GET", answer);
        const recording_logger_t logger;
        QVERIFY(!client->read_configuration());
        const QList<entry_t> expected{
            {0, QStringLiteral("Config server - wrong reponse to http://127.0.0.1:4321/") + rest,
             QStringLiteral("read_configuration")}};
        QCOMPARE(client_lines(logger), expected);
        QCOMPARE(torlan_option_t::LogsFolder(), QStringLiteral("/l"));
        QCOMPARE(torlan_option_t::CaCertsFile().size(), 3);
        QCOMPARE(torlan_option_t::InstallationId(), QStringLiteral("id-1"));
        QVERIFY(!QFile::exists(file_name()));
    }

    void without_a_server_nothing_is_read() {
        server.reset();
        const recording_logger_t logger;
        QVERIFY(!client->read_configuration());
        QCOMPARE(client_lines(logger).size(), 1);
        QCOMPARE(client_lines(logger).constFirst().text,
                 QStringLiteral("Config server - wrong reponse to http://127.0.0.1:4321/"));
    }

    void without_options_nothing_is_read() {
        options.reset();
        serve(document(QStringLiteral(" "), folder()));
        const recording_logger_t logger;
        QVERIFY(!client->read_configuration());
        const QList<entry_t> expected{{0, QStringLiteral("Config server - no options to fill"),
                                       QStringLiteral("read_configuration")}};
        QCOMPARE(client_lines(logger), expected);
        const http_read_config_server_t early(nullptr);
        QCOMPARE(server->requests().size(), 1);
    }

    void a_repeated_creation_of_the_options_keeps_the_settings() {
        serve(document(QStringLiteral("id-1"), folder()));
        QVERIFY(client->read_configuration());
        options_guard_t::create();
        QCOMPARE(torlan_option_t::LogsFolder(), QStringLiteral("/l"));
        QCOMPARE(torlan_option_t::CaCertsFile().size(), 3);
        QCOMPARE(torlan_option_t::InstallationId(), QStringLiteral("id-1"));
    }

    void settings_are_copied_while_the_options_are_locked() {
        fake_getprop_t device;
        const QString fifo = clients->filePath(QStringLiteral("fifo"));
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        const int hold = ::open(QFile::encodeName(fifo).constData(), O_RDWR | O_CLOEXEC);
        device.answer("persist.sys.locale", "exec cat '" + QFile::encodeName(fifo) + '\'');
        serve(document(QStringLiteral("id-1"), folder()));

        const std::unique_ptr<QThread> creation(
            QThread::create([]() { options_guard_t::create(); }));
        creation->start();
        QTRY_COMPARE(device.calls().size(), 1);
        QVERIFY(client->read_configuration());
        QVERIFY(!creation->isFinished());
        ::close(hold);
        QVERIFY(creation->wait());
        QCOMPARE(torlan_option_t::InstallationId(), QStringLiteral("id-1"));
    }

    void there_is_one_instance_until_it_is_destroyed() {
        QObject parent;
        const QPointer<http_read_config_server_t> first =
            http_read_config_server_t::createInstance(&parent);
        QCOMPARE(first->parent(), &parent);
        QCOMPARE(http_read_config_server_t::createInstance(nullptr), first.data());
        QCOMPARE(http_read_config_server_t::getInstance(nullptr), first.data());
        QCOMPARE(first->findChildren<http_t*>().size(), 1);
        const QPointer<http_t> http = first->findChild<http_t*>();

        http_read_config_server_t::destroyInstance();
        QVERIFY(first.isNull());
        QVERIFY(http.isNull());
        http_read_config_server_t::destroyInstance();
        QVERIFY(http_read_config_server_t::getInstance(&parent) != nullptr);
    }

    void destruction_by_the_parent_clears_the_instance() {
        auto parent = std::make_unique<QObject>();
        const QPointer<http_read_config_server_t> first =
            http_read_config_server_t::getInstance(parent.get());
        QCOMPARE(first->parent(), parent.get());
        parent.reset();
        QVERIFY(first.isNull());
        QObject other;
        QCOMPARE(http_read_config_server_t::getInstance(&other)->parent(), &other);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        http_read_config_server_t::destroyInstance();
    }

    void any_object_that_dies_takes_the_instance_along() {
        const QPointer<http_read_config_server_t> instance =
            http_read_config_server_t::createInstance(nullptr);
        client.reset();
        QVERIFY(!instance.isNull());
        QVERIFY(http_read_config_server_t::getInstance(nullptr) != instance.data());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(instance.isNull());
    }
};

QTEST_GUILESS_MAIN(tst_http_read_config_server_t)
#include "tst_http_read_config_server_t.moc"

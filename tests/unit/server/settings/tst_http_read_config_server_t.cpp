#include "utility/http_read_config_server_t.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "fakes/recording_logger_t.h"
#include "http/http_t.h"
#include "unit/server/settings/support/config_server_t.h"
#include "unit/server/settings/support/options_guard_t.h"
#include "utility/cnfserver.h"

using fakes::recording_logger_t;
using utility::cnfserver;
using utility::http_read_config_server_t;
using utility::torlan_option_t;

namespace {

const QString source = QStringLiteral("server/utility/http_read_config_server_t");

/// A line without its number, which is any.
struct entry_t {
    int level;
    QString text;
    QString function;

    bool operator==(const entry_t&) const = default;
};

QList<entry_t> client_lines(const recording_logger_t& _logger) {
    QList<entry_t> list;
    for (const recording_logger_t::line_t& line : _logger.lines()) {
        if (line.source == source && line.line > 0) {
            list.append({line.level, line.message, line.function});
        }
    }
    return list;
}

/// @p _text with double quotes for its single ones: easier to read here.
QByteArray quoted(QByteArray _text) {
    return _text.replace('\'', '"');
}

QJsonObject json(const QByteArray& _text) {
    return QJsonDocument::fromJson(quoted(_text)).object();
}

QJsonObject document(const QString& _id, const QString& _client_folder) {
    QJsonObject config = json(
        "{ "
        "'installation': {'master': 'yes'}, "
        "'static': { "
        "'drdconf': {'serial': 'S-77'}, "
        "'device': {'product_name': 'Box'}, "
        "'mosquitto': {'mqtt_cloud_url': 'mqtts://cloud'}, "
        "'torlan': { "
        "'comunication': {'port': 1883, 'global': {'name': 'house'}}, "
        "'paths': {'logs': '/l', 'plugins': '/p', 'system_ca_certs': '/ca', "
        "'cacerts': ['b.pem', 7, 'a.pem']}, "
        "'urls': {'cloud_service': 'https://service', 'cloud_web': 'https://web'}}}} ");
    QJsonObject installation = config[QLatin1String("installation")].toObject();
    installation[QLatin1String("installation_id")] = _id;
    config[QLatin1String("installation")] = installation;
    QJsonObject statics = config[QLatin1String("static")].toObject();
    QJsonObject torlan = statics[QLatin1String("torlan")].toObject();
    QJsonObject paths = torlan[QLatin1String("paths")].toObject();
    paths[QLatin1String("client_communication")] = _client_folder;
    torlan[QLatin1String("paths")] = paths;
    statics[QLatin1String("torlan")] = torlan;
    config[QLatin1String("static")] = statics;
    return config;
}

QByteArray bytes(const QJsonObject& _object) {
    return QJsonDocument(_object).toJson(QJsonDocument::Compact);
}

}  // namespace

class tst_http_read_config_server_t : public QObject {
    Q_OBJECT

 private:
    QString folder() const { return clients->path(); }
    QString file_name() const {
        return clients->filePath(QStringLiteral("config/comunication.json"));
    }

    QJsonObject client_file() const {
        QFile file(file_name());
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject{{QStringLiteral("missing"), true}};
    }

    void serve(const QJsonObject& _config) { server->answer("GET", "200 OK", bytes(_config)); }

    std::unique_ptr<config_server_t> server;
    std::unique_ptr<QTemporaryDir> clients;
    std::unique_ptr<options_guard_t> options;
    std::unique_ptr<http_read_config_server_t> client;

 private Q_SLOTS:
    void init() {
        server = std::make_unique<config_server_t>();
        server->answer("PUT", "200 OK", "{}");
        QVERIFY(http_t::map_base(cnfserver::base, server->port()));
        clients = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(folder()).mkdir(QStringLiteral("config")));
        options = std::make_unique<options_guard_t>();
        client = std::make_unique<http_read_config_server_t>(nullptr);
    }

    void cleanup() {
        client.reset();
        http_read_config_server_t::destroyInstance();
        options.reset();
        server.reset();
        clients.reset();
    }

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

    void an_id_around_characters_is_kept_with_its_blanks() {
        const QString id = QStringLiteral("  id 1 ");
        serve(document(id, folder()));
        const recording_logger_t logger;
        QVERIFY(client->read_configuration());
        QCOMPARE(torlan_option_t::InstallationId(), id);
        QCOMPARE(server->requests().size(), 1);
        QCOMPARE(client_lines(logger).size(), 1);
    }

    void a_blank_id_is_replaced_and_stored_data() {
        QTest::addColumn<QString>("blank");
        QTest::newRow("empty") << QString();
        QTest::newRow("blanks") << QStringLiteral("   ");
        QTest::newRow("white space") << QStringLiteral("\t\n ");
    }

    void a_blank_id_is_replaced_and_stored() {
        QFETCH(const QString, blank);
        serve(document(blank, folder()));
        const recording_logger_t logger;
        QVERIFY(client->read_configuration());

        const QString id = torlan_option_t::InstallationId();
        QCOMPARE(id.size(), 32);
        const config_server_t::request_t put = server->requests().value(1);
        QCOMPARE(put.method, QByteArray("PUT"));
        QCOMPARE(put.target, QByteArray("/installation/installation_id?runtriggers=true"));
        QCOMPARE(put.body, '"' + id.toUtf8() + '"');
        QCOMPARE(server->requests().size(), 2);

        const QString check = QStringLiteral("check_HTTP_InstallationId");
        const QList<entry_t> expected{
            {6, QStringLiteral("Generate new installation_id"), check},
            {6, QStringLiteral("Save new instalaltion_id in config server: ") + id, check},
            {4, QStringLiteral("Save client configuration file to: ") + file_name(),
             QStringLiteral("generate_HTTP_ClientFileConfig")}};
        QCOMPARE(client_lines(logger), expected);

        const QJsonObject written{{QStringLiteral("port"), 1883},
                                  {QStringLiteral("global"),
                                   QJsonObject{{QStringLiteral("name"), QStringLiteral("house")},
                                               {QStringLiteral("installation_id"), id}}}};
        QCOMPARE(client_file(), written);
    }

    void an_id_that_is_no_text_is_replaced_too() {
        QJsonObject config = document(QString(), folder());
        config[QLatin1String("installation")] =
            QJsonObject{{QStringLiteral("installation_id"), 12345}};
        serve(config);
        QVERIFY(client->read_configuration());
        QCOMPARE(torlan_option_t::InstallationId().size(), 32);
        QCOMPARE(server->requests().size(), 2);
    }

    void a_repeated_creation_of_the_options_keeps_the_settings() {
        serve(document(QStringLiteral("id-1"), folder()));
        QVERIFY(client->read_configuration());
        options_guard_t::create();
        QCOMPARE(torlan_option_t::LogsFolder(), QStringLiteral("/l"));
        QCOMPARE(torlan_option_t::CaCertsFile().size(), 3);
        QCOMPARE(torlan_option_t::InstallationId(), QStringLiteral("id-1"));
    }

    void a_stored_id_stands_in_both_places_of_the_document() {
        QJsonObject config = document(QString(), folder());
        http_t http(cnfserver::base, false, nullptr);
        const QString id = client->check_HTTP_InstallationId(config, &http, QString());
        QCOMPARE(config[QLatin1String("installation")][QLatin1String("installation_id")].toString(),
                 id);
        QCOMPARE(config[QLatin1String("installation")][QLatin1String("master")].toString(),
                 QStringLiteral("yes"));
        const QJsonValue comunication =
            config[QLatin1String("static")][QLatin1String("torlan")][QLatin1String("comunication")];
        QCOMPARE(comunication[QLatin1String("global")][QLatin1String("installation_id")].toString(),
                 id);
        QCOMPARE(comunication[QLatin1String("global")][QLatin1String("name")].toString(),
                 QStringLiteral("house"));
    }

    void an_id_in_use_leaves_the_document_alone() {
        QJsonObject config{{QStringLiteral("a"), 1}};
        const QJsonObject before = config;
        QCOMPARE(client->check_HTTP_InstallationId(config, nullptr, QStringLiteral(" x ")),
                 QStringLiteral(" x "));
        QCOMPARE(config, before);
    }

    // Updates make no missing objects: the id takes the place of the first one that is missing.
    void an_id_lands_where_the_document_ends_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");

        QTest::newRow("no global")
            << quoted("{'installation':{},'static':{'torlan':{'comunication':{'a':1}}}}")
            << quoted(
                   "{'installation':{'installation_id':'ID'},'static':{'torlan':{'comunication':{'"
                   "a':1,'global':'ID'}}}}");
        QTest::newRow("no comunication") << quoted("{'installation':{},'static':{'torlan':{}}}")
                                         << quoted(
                                                "{'installation':{'installation_id':'ID'},'static':"
                                                "{'torlan':{'comunication':'ID'}}}");
        QTest::newRow("nothing") << quoted("{'a':1}")
                                 << quoted("{'a':1,'installation':'ID','static':'ID'}");
    }

    void an_id_lands_where_the_document_ends() {
        QFETCH(const QByteArray, before);
        QFETCH(QByteArray, after);
        QJsonObject config = QJsonDocument::fromJson(before).object();
        http_t http(cnfserver::base, false, nullptr);
        const QString id = client->check_HTTP_InstallationId(config, &http, QString());
        QCOMPARE(bytes(config), after.replace("ID", id.toUtf8()));
    }

    void the_client_file_is_readable_by_all_and_indented() {
        serve(document(QStringLiteral("id-1"), folder()));
        QVERIFY(client->read_configuration());
        QFile file(file_name());
        const QFileDevice::Permissions expected = QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                  QFileDevice::ReadGroup | QFileDevice::ReadOther;
        QCOMPARE(file.permissions() & ~(QFileDevice::ReadUser | QFileDevice::WriteUser), expected);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("{\n    \"global\""));
    }

    void a_folder_with_a_slash_at_its_end_gives_two() {
        serve(document(QStringLiteral("id-1"), folder() + QLatin1Char('/')));
        const recording_logger_t logger;
        QVERIFY(client->read_configuration());
        QCOMPARE(logger.count(QStringLiteral("Save client configuration file to: ") + folder() +
                              QStringLiteral("//config/comunication.json")),
                 1);
        QVERIFY(QFile::exists(file_name()));
    }

    void settings_that_are_no_object_are_written_as_an_empty_one_data() {
        QTest::addColumn<QByteArray>("config");
        QTest::newRow("missing") << quoted("{'a':1}");
        QTest::newRow("text") << quoted("{'static':{'torlan':{'comunication':'x'}}}");
        QTest::newRow("array") << quoted("{'static':{'torlan':{'comunication':[1]}}}");
    }

    void settings_that_are_no_object_are_written_as_an_empty_one() {
        QFETCH(const QByteArray, config);
        serve(document(QStringLiteral("id-1"), folder()));
        QVERIFY(client->read_configuration());
        client->generate_HTTP_ClientFileConfig(QJsonDocument::fromJson(config).object());
        QCOMPARE(client_file(), QJsonObject());
    }

    void a_client_file_that_cannot_be_opened_goes_unnoticed() {
        serve(document(QStringLiteral("id-1"), folder() + QStringLiteral("/none")));
        const recording_logger_t logger;
        QVERIFY(client->read_configuration());
        QCOMPARE(client_lines(logger).size(), 1);
    }

    void nothing_needs_a_logger() {
        serve(document(QString(), folder()));
        QVERIFY(client->read_configuration());
        QCOMPARE(
            client_file()[QLatin1String("global")][QLatin1String("installation_id")].toString(),
            torlan_option_t::InstallationId());
        server->answer("GET", "200 OK", "{}");
        QVERIFY(!client->read_configuration());
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

// The installation id, and the client file that tells it.
#include "unit/server/utility/support/client_test_t.h"

using client_test::bytes;
using client_test::client_lines;
using client_test::document;
using client_test::entry_t;
using client_test::quoted;
using fakes::recording_logger_t;
using utility::cnfserver;
using utility::torlan_option_t;

class tst_http_read_config_server_t_id : public client_test_t {
    Q_OBJECT

 private Q_SLOTS:
    void init() { build(); }
    void cleanup() { take_down(); }

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
};

QTEST_GUILESS_MAIN(tst_http_read_config_server_t_id)
#include "tst_http_read_config_server_t_id.moc"

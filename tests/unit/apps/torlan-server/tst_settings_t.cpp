#include "settings_t.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "kit/http_server_t.h"
#include "utility/torlan_option_t.h"

using kit::http_server_t;
using torlan::options_t;
using torlan::settings_t;
using utility::torlan_option_t;

class tst_settings_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_options_are_there_from_the_construction_on_and_go_with_it() {
        {
            const settings_t settings{options_t()};
            QVERIFY(torlan_option_t::getInstance() != nullptr);
        }
        QVERIFY(torlan_option_t::getInstance() == nullptr);
    }

    void the_document_fills_the_options() {
        serve(R"({"installation": {"installation_id": "i"},
                  "static": {"torlan": {"paths": {"logs": "/l", "plugins": "/p"}}}})");
        settings_t settings(options_here());
        QCOMPARE(settings.read().error, QString());
        QCOMPARE(torlan_option_t::InstallationId(), QString("i"));
        QCOMPARE(torlan_option_t::LogsFolder(), QString("/l"));
        QCOMPARE(torlan_option_t::PluginFolder(), QString("/p"));
    }

    void clients_are_told_broker_and_id_before_the_document_is_read() {
        serve(R"({"installation": {"installation_id": "i"},
                  "static": {"torlan": {"comunication": {"global": {}}}}})");
        settings_t settings(options_here());
        QCOMPARE(settings.read().error, QString());
        QList<QByteArray> requests;
        for (const auto& request : server->requests()) {
            requests.append(request.method + ' ' + request.target);
        }
        QCOMPARE(requests,
                 (QList<QByteArray>{"GET /", "PUT /static/torlan/comunication/mqtt",
                                    "PUT /static/torlan/comunication/global/installation_id/",
                                    "GET /"}));
    }

    void the_client_file_has_a_folder_to_be_written_into() {
        const QTemporaryDir place;
        const QString folder = place.filePath("for/clients");
        serve(R"({"installation": {"installation_id": "i"}, "static": {"torlan": {
                  "comunication": {"global": {}}, "paths": {"client_communication": ")" +
              folder.toUtf8() + R"("}}}})");
        settings_t settings(options_here());
        QCOMPARE(settings.read().error, QString());
        QVERIFY(QFile::exists(folder + "/config/comunication.json"));
    }

    void a_wait_is_told_and_can_be_given_up() {
        server =
            std::make_unique<http_server_t>(http_server_t::json("{}", "503 Service Unavailable"));
        options_t options = options_here();
        options.config_wait = 3600;
        settings_t settings(options);
        QSignalSpy waiting(&settings, &settings_t::waiting);
        connect(&settings, &settings_t::waiting, &settings, &settings_t::give_up,
                Qt::QueuedConnection);
        QCOMPARE(settings.read().error, QString("The start was broken off."));
        QCOMPARE(waiting.size(), 1);
    }

    void a_document_without_settings_is_one_sentence() {
        serve("{}");
        settings_t settings(options_here());
        const QString error = settings.read().error;
        QVERIFY2(error.contains("no settings") && error.contains(QString::number(server->port())),
                 qPrintable(error));
    }

 private:
    void serve(const QByteArray& _document) {
        server = std::make_unique<http_server_t>(http_server_t::json(_document));
    }
    options_t options_here() const {
        options_t options;
        options.config_port = server->port();
        return options;
    }

    std::unique_ptr<http_server_t> server;
};

QTEST_GUILESS_MAIN(tst_settings_t)
#include "tst_settings_t.moc"

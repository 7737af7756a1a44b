#include "settings_t.h"

#include <QDir>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <atomic>

#include "fakes/tiny_http_server_t.h"
#include "utility/torlan_option_t.h"

using fakes::tiny_http_server_t;
using torlan::options_t;
using torlan::settings_t;
using utility::torlan_option_t;

class tst_settings_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_options_are_there_from_the_construction_on_and_go_with_it() {
        {
            const settings_t settings{options_t()};
            QCOMPARE(torlan_option_t::Platform(), QSysInfo::kernelType());
            QCOMPARE(torlan_option_t::Version(), QString("9.8.7"));
            QVERIFY(torlan_option_t::Versions().contains("libhttp"));
            QVERIFY(!torlan_option_t::BuildBranch().isEmpty());
            QVERIFY(!torlan_option_t::BuildCommit().isEmpty());
            QVERIFY(QDateTime::fromString(torlan_option_t::BuildTime(), Qt::ISODate).isValid());
        }
        QVERIFY(torlan_option_t::getInstance() == nullptr);
    }

    void the_log_is_as_shipped_unless_told_otherwise() {
        options_t options;
        {
            const auto log = settings_t(options).log("/fallback");
            QCOMPARE(log.folder, QString("/fallback"));
            QCOMPARE(log.name, QString("server-torlan"));
            QCOMPARE(log.stdout_level, 4);
            QCOMPARE(log.file_level, 5);
            QCOMPARE(log.size_mb, 25);
            QCOMPARE(log.rotation, 5);
        }
        options.stdout_level = 1;
        options.file_level = 2;
        options.log_size = 3;
        options.log_rotate = 0;
        const auto log = settings_t(options).log({});
        QCOMPARE(log.stdout_level, 1);
        QCOMPARE(log.file_level, 2);
        QCOMPARE(log.size_mb, 3);
        QCOMPARE(log.rotation, 0);
    }

    void values_are_saved_as_the_options_say() {
        const settings_t settings{options_t()};
        QCOMPARE(settings.save_delay_ms(), 500);
        QCOMPARE(settings.save_iterations(), 5);
    }

    void folders_of_the_document_are_taken() {
        serve(R"({"static": {"torlan": {"paths": {"logs": "/l", "plugins": "/p"}}},
                  "installation": {"installation_id": "i"}})");
        options_t options = options_here();
        {
            settings_t settings(options);
            QCOMPARE(settings.read(), QString());
            QCOMPARE(settings.log("/fallback").folder, QString("/l"));
            QCOMPARE(settings.plugin_folder(), QString("/p"));
        }
        options.plugins = "/given";
        settings_t settings(options);
        QCOMPARE(settings.read(), QString());
        QCOMPARE(settings.plugin_folder(), QString("/given"));
    }

    void drivers_are_beside_the_program_when_nothing_is_said() {
        const settings_t settings{options_t()};
        QCOMPARE(settings.plugin_folder(),
                 QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../lib/drivers"));
    }

    void what_clients_are_told_is_put_only_when_it_differs_data() {
        QTest::addColumn<QByteArray>("comunication");
        QTest::addColumn<QList<QByteArray>>("targets");
        const QByteArray mqtt = R"("mqtt": {"host": "127.0.0.1", "port": 1883})";
        const QByteArray put_mqtt = "/static/torlan/comunication/mqtt";
        const QByteArray put_id = "/static/torlan/comunication/global/installation_id/";
        QTest::newRow("all is there")
            << "{" + mqtt + R"(, "global": {"installation_id": "i"}})" << QList<QByteArray>{};
        QTest::newRow("other port") << QByteArray(R"({"mqtt": {"host": "127.0.0.1", "port": 1884},
                              "global": {"installation_id": "i"}})")
                                    << QList<QByteArray>{put_mqtt};
        QTest::newRow("other id") << "{" + mqtt + R"(, "global": {"installation_id": ""}})"
                                  << QList<QByteArray>{put_id};
        QTest::newRow("nothing yet")
            << QByteArray(R"({"global": {}})") << QList<QByteArray>{put_mqtt, put_id};
        QTest::newRow("no global object") << "{" + mqtt + "}" << QList<QByteArray>{};
        QTest::newRow("no object") << QByteArray("1") << QList<QByteArray>{};
    }
    void what_clients_are_told_is_put_only_when_it_differs() {
        QFETCH(QByteArray, comunication);
        serve(R"({"static": {"torlan": {"comunication": )" + comunication +
              R"(}}, "installation": {"installation_id": "i"}})");
        settings_t settings(options_here());
        QCOMPARE(settings.read(), QString());
        QList<QByteArray> targets;
        for (const auto& request : server->requests()) {
            if (request.method == "PUT") {
                targets.append(request.target);
            }
        }
        QTEST(targets, "targets");
    }

    void no_answer_in_time_is_one_sentence_and_the_wait_is_told_once() {
        serve_nothing_yet();
        options_t options = options_here();
        options.config_wait = 1;
        settings_t settings(options);
        QSignalSpy waiting(&settings, &settings_t::waiting);
        QElapsedTimer clock;
        clock.start();
        const QString error = settings.read();
        QVERIFY(clock.elapsed() >= 1000);
        QVERIFY2(error.contains("within 1 s") && error.contains("503"), qPrintable(error));
        QCOMPARE(waiting.size(), 1);
        QVERIFY(server->requests().size() > 1);
    }

    void without_patience_one_question_is_put() {
        serve_nothing_yet();
        options_t options = options_here();
        options.config_wait = 0;
        settings_t settings(options);
        QVERIFY(!settings.read().isEmpty());
        QCOMPARE(server->requests().size(), 1);
    }

    void an_answer_after_a_while_is_good() {
        std::atomic<int> questions = 0;
        server = std::make_unique<tiny_http_server_t>([&questions](const auto&) {
            return ++questions < 3
                       ? tiny_http_server_t::json("{}", "503 Service Unavailable")
                       : tiny_http_server_t::json(R"({"installation": {"installation_id": "i"}})");
        });
        settings_t settings(options_here());
        QCOMPARE(settings.read(), QString());
        QCOMPARE(torlan_option_t::InstallationId(), QString("i"));
    }

    void giving_up_ends_the_wait() {
        serve_nothing_yet();
        options_t options = options_here();
        options.config_wait = 3600;
        settings_t settings(options);
        QTimer::singleShot(10, &settings, &settings_t::give_up);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!settings.read().isEmpty());
        QVERIFY(clock.elapsed() < 5000);
    }

    void a_document_without_settings_is_one_sentence() {
        serve("{}");
        settings_t settings(options_here());
        const QString error = settings.read();
        QVERIFY2(error.contains("no settings") && error.contains(QString::number(server->port())),
                 qPrintable(error));
    }

 private:
    void serve(const QByteArray& _document) {
        server = std::make_unique<tiny_http_server_t>(tiny_http_server_t::json(_document));
    }
    void serve_nothing_yet() {
        server = std::make_unique<tiny_http_server_t>(
            tiny_http_server_t::json("{}", "503 Service Unavailable"));
    }
    options_t options_here() const {
        options_t options;
        options.config_port = server->port();
        return options;
    }

    std::unique_ptr<tiny_http_server_t> server;
};

int main(int _argc, char* _argv[]) {
    QCoreApplication application(_argc, _argv);
    QCoreApplication::setApplicationVersion(QStringLiteral("9.8.7"));
    tst_settings_t test;
    return QTest::qExec(&test, _argc, _argv);
}
#include "tst_settings_t.moc"

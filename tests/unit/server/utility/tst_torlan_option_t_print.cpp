#include <QDir>
#include <QTest>
#include <algorithm>

#include "fakes/recording_logger_t.h"
#include "http/http_t.h"
#include "unit/server/utility/support/config_server_t.h"
#include "unit/server/utility/support/fake_getprop_t.h"
#include "unit/server/utility/support/options_guard_t.h"
#include "utility/cnfserver.h"
#include "utility/http_read_config_server_t.h"

using fakes::recording_logger_t;
using utility::torlan_option_t;

namespace {

struct entry_t {
    int level;
    QString text;
};

QList<entry_t> entries(int _level, const QStringList& _texts) {
    QList<entry_t> list;
    for (const QString& text : _texts) {
        list.append({_level, text});
    }
    return list;
}

const QString dashes =
    QStringLiteral("----------------------------------------------------------------------------");

QStringList testing_lines() {
    const QString frame = QStringLiteral(
        "::============================================================================::");
    return {
        frame,
        QStringLiteral("SPECIAL FUNCTION FOR TESTING ENABLE"),
        QStringLiteral(
            "This makes it possible to execute commands normally prohibited in release execution."),
        QStringLiteral("Not enabled it in real installation."),
        QStringLiteral("This could degrade performance and fail to provide the necessary safety"),
        frame};
}

QStringList option_lines() {
    return {QStringLiteral("Versions: "),
            QStringLiteral(" - api: v1"),
            QStringLiteral(" - server: 1.2.3"),
            QStringLiteral("Build branch: main"),
            QStringLiteral("Build commit: 0123abc"),
            QStringLiteral("Build time: 2024-05-06"),
            QStringLiteral("Image version: image-1.2-3"),
            QStringLiteral("Language: it_IT"),
            QStringLiteral("Browse avahi: true"),
            QStringLiteral("Serial device: "),
            QStringLiteral("Brand: Lunora"),
            QStringLiteral("Product name: "),
            QStringLiteral("Url config server: http://127.0.0.1:4321/"),
            QStringLiteral("Installation id: "),
            QStringLiteral("Folder Log: "),
            QStringLiteral("Folder plugin: "),
            QStringLiteral("System CA certs: "),
            QStringLiteral("Folder client: "),
            QStringLiteral("File certs: "),
            QStringLiteral("Bus monitor: 2"),
            QStringLiteral("Cloud Web url: "),
            QStringLiteral("Cloud Service url: "),
            QStringLiteral("Cloud MQTT url: "),
            QStringLiteral("Starting server with log level stdout: 1"),
            QStringLiteral("Starting server with log level file: 3"),
            QStringLiteral("Starting server with log size: 7 MB"),
            QStringLiteral("Starting server with log rotation: 9")};
}

QList<entry_t> printed(const recording_logger_t& _logger, const char* _function) {
    QList<entry_t> list;
    for (const recording_logger_t::line_t& line : _logger.lines()) {
        if (line.function == QLatin1String(_function) &&
            line.source == QLatin1String("server/utility/torlan_option_t") && line.line > 0) {
            list.append({line.level, line.message});
        }
    }
    return list;
}

void compare(const QList<entry_t>& _actual, const QList<entry_t>& _expected) {
    for (qsizetype i = 0; i < qMin(_actual.size(), _expected.size()); ++i) {
        QCOMPARE(_actual.at(i).text, _expected.at(i).text);
        QVERIFY2(_actual.at(i).level == _expected.at(i).level, qPrintable(_actual.at(i).text));
    }
    QCOMPARE(_actual.size(), _expected.size());
}

}  // namespace

class tst_torlan_option_t_print : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_whole_set_is_written_in_order_data() {
        QTest::addColumn<bool>("testing");
        QTest::newRow("release") << false;
        QTest::newRow("testing") << true;
    }

    void the_whole_set_is_written_in_order() {
        QFETCH(const bool, testing);
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        if (testing) {
            options->set_special_fuction_for_testing(true);
        }
        options->set_avahi_browse_option(true);
        options->set_level_bus_monitor(2);
        options->set_log_level_std(1);
        options->set_log_level_file(3);
        options->set_log_size(7);
        options->set_log_rotate(9);

        QList<entry_t> expected{{4, QStringLiteral("::") + dashes + QStringLiteral("::")}};
        expected += entries(3, testing ? testing_lines() : QStringList());
        expected += entries(4, option_lines());
        expected += entries(6, {QStringLiteral("Dalay to save: 500 msec."),
                                QStringLiteral("Iteration force save: 5"),
                                QStringLiteral("Update datetime to realtime db: 600 sec.")});
        expected += entries(4, {dashes});
        expected += entries(6, {dashes, QStringLiteral("Resource"), dashes, dashes});

        const recording_logger_t logger;
        torlan_option_t::print();
        compare(printed(logger, "print"), expected);
    }

    void each_setting_stands_behind_its_own_label() {
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        config_server_t server;
        server.answer("GET", "200 OK",
                      R"({"installation":{"installation_id":"i-id"},"static":{)"
                      R"("drdconf":{"serial":"s-no"},"device":{"product_name":"p-name"},)"
                      R"("mosquitto":{"mqtt_cloud_url":"c-mqtt"},"torlan":{)"
                      R"("paths":{"logs":"f-logs","plugins":"f-plugins","system_ca_certs":"f-ca",)"
                      R"("cacerts":["one","two"],"client_communication":"/nowhere"},)"
                      R"("urls":{"cloud_service":"c-service","cloud_web":"c-web"}}}})");
        QVERIFY(http_t::map_base(utility::cnfserver::base, server.port()));
        QVERIFY(utility::http_read_config_server_t(nullptr).read_configuration());

        const recording_logger_t logger;
        torlan_option_t::print();
        const QStringList expected{
            QStringLiteral("Serial device: s-no"),
            QStringLiteral("Brand: Lunora"),
            QStringLiteral("Product name: p-name"),
            QStringLiteral("Url config server: http://127.0.0.1:4321/"),
            QStringLiteral("Installation id: i-id"),
            QStringLiteral("Folder Log: f-logs"),
            QStringLiteral("Folder plugin: f-plugins"),
            QStringLiteral("System CA certs: f-ca"),
            QStringLiteral("Folder client: /nowhere"),
            QStringLiteral("File certs: one - two"),
            QStringLiteral("Bus monitor: 0"),
            QStringLiteral("Cloud Web url: c-web"),
            QStringLiteral("Cloud Service url: c-service"),
            QStringLiteral("Cloud MQTT url: c-mqtt"),
        };
        compare(printed(logger, "print").mid(10, expected.size()), entries(4, expected));
    }

    void the_resources_stand_between_the_last_two_dashed_lines() {
        const options_guard_t options;
        const recording_logger_t logger;
        torlan_option_t::print();
        const QList<recording_logger_t::line_t> lines = logger.lines();
        QCOMPARE(lines.last().message, dashes);
        QCOMPARE(lines.at(lines.size() - 2).function, QStringLiteral("print_dir"));
        const QList<entry_t> listed = printed(logger, "print_dir");
        QVERIFY(!listed.constFirst().text.startsWith(QLatin1Char(' ')));
        QCOMPARE(logger.count(QStringLiteral(":/settings/sub/deep/three.txt")), 1);
        const bool from_the_root =
            std::any_of(listed.cbegin(), listed.cend(), [](const entry_t& entry) {
                return entry.text.trimmed() == QLatin1String(":/settings");
            });
        QVERIFY(from_the_root);
    }

    void false_flags_and_an_empty_instance_are_printed_too() {
        const recording_logger_t logger;
        torlan_option_t::print();
        QCOMPARE(logger.count(QStringLiteral("Browse avahi: false")), 1);
        QCOMPARE(logger.count(QStringLiteral("Brand: Kelma")), 1);
        QCOMPARE(logger.count(QStringLiteral(" - ")), 0);
    }

    void a_version_that_is_no_text_is_printed_empty() {
        torlan_option_t::createInstance(nullptr, {}, {}, QJsonObject{{QStringLiteral("number"), 3}},
                                        {}, {}, {}, nullptr);
        const recording_logger_t logger;
        torlan_option_t::print();
        QCOMPARE(logger.lines().at(2).message, QStringLiteral(" - number: "));
        torlan_option_t::destroyInstance();
    }

    void a_folder_lists_files_first_and_has_one_indent() {
        const recording_logger_t logger;
        int depth = 2;
        torlan_option_t::print_dir(QStringLiteral(":/settings"), depth);
        QCOMPARE(depth, 7);

        // The names' order, which is not the order in which the resource system keeps them.
        const QDir root(QStringLiteral(":/settings"));
        const QStringList folders{QStringLiteral("alpha"), QStringLiteral("beta"),
                                  QStringLiteral("sub"), QStringLiteral("zone")};
        QVERIFY(root.entryList(QDir::Dirs, QDir::Unsorted) != folders);
        // The indent is as deep as folders had been visited when the listing of this one began: 2
        // for the root, then one more for each.
        const auto line = [](int indent, const char* path) {
            return entry_t{6, QString(indent, QLatin1Char(' ')) + QStringLiteral(":/settings/") +
                                  QLatin1String(path)};
        };
        const QList<entry_t> expected{
            line(2, "one.txt"),     line(2, "alpha"),         line(3, "alpha/x.txt"),
            line(2, "beta"),        line(4, "beta/x.txt"),    line(2, "sub"),
            line(5, "sub/two.txt"), line(5, "sub/deep"),      line(6, "sub/deep/three.txt"),
            line(2, "zone"),        line(7, "zone/four.txt"),
        };
        compare(printed(logger, "print_dir"), expected);
    }
};

QTEST_GUILESS_MAIN(tst_torlan_option_t_print)
#include "tst_torlan_option_t_print.moc"

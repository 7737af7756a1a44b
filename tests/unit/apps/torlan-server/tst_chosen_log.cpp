#include "chosen_log.h"

#include <QTest>

#include "kit/http_server_t.h"
#include "settings_t.h"

using kit::http_server_t;
using torlan::chosen_log;

class tst_chosen_log : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void every_value_is_the_options() {
        torlan::options_t options;
        options.stdout_level = 1;
        options.file_level = 2;
        options.log_size = 3;
        options.log_rotate = 0;
        const torlan::option_singletons_t singletons(options);
        const auto log = chosen_log(QStringLiteral("/given"));
        QCOMPARE(log.name, QStringLiteral("server-torlan"));
        QCOMPARE(log.stdout_level, 1);
        QCOMPARE(log.file_level, 2);
        QCOMPARE(log.size_mb, 3);
        QCOMPARE(log.rotation, 0);
    }

    void the_folder_is_never_where_the_settings_say() {
        const http_server_t server(http_server_t::json(
            R"({"static": {"torlan": {"paths": {"logs": "/named"}}},
                "installation": {"installation_id": "i"}})"));
        torlan::options_t options;
        options.config_port = server.port();
        torlan::settings_t settings(options);
        QCOMPARE(settings.read().error, QString());
        QCOMPARE(chosen_log(QStringLiteral("/given")).folder, QStringLiteral("/given"));
    }
};

QTEST_GUILESS_MAIN(tst_chosen_log)
#include "tst_chosen_log.moc"

#include "driver_folder.h"

#include <QDir>
#include <QTest>

#include "kit/http_server_t.h"
#include "settings_t.h"

using kit::http_server_t;
using torlan::driver_folder;

class tst_driver_folder : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void given_over_beside_the_program_and_never_where_the_settings_say() {
        const http_server_t server(http_server_t::json(
            R"({"static": {"torlan": {"paths": {"plugins": "/named"}}},
                "installation": {"installation_id": "i"}})"));
        torlan::options_t options;
        options.config_port = server.port();
        torlan::settings_t settings(options);
        const QString beside = QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                               QStringLiteral("/../lib/drivers"));
        QCOMPARE(driver_folder({}), beside);
        QCOMPARE(driver_folder(QStringLiteral("/given")), QStringLiteral("/given"));
        QCOMPARE(settings.read().error, QString());
        QCOMPARE(driver_folder({}), beside);
        QCOMPARE(driver_folder(QStringLiteral("/given")), QStringLiteral("/given"));
    }
};

QTEST_GUILESS_MAIN(tst_driver_folder)
#include "tst_driver_folder.moc"

// Includes point one way: a folder may include what stands below it, never what stands above.
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace {

const QString root = QStringLiteral(SOURCE_ROOT "/");
const QString plugin = QStringLiteral("drivers/plugins/plugin_driver_api/");

/// Where each quoted include of the files below @p _folder stands and what it names.
struct include_t {
    QString place;  ///< "file:line"
    QString file;
    QString name;
    bool quoted;
};

QList<include_t> includes_below(const QString& _folder) {
    static const QRegularExpression expression(
        QStringLiteral(R"(^\s*#\s*include\s*(["<])([^">]+)[">])"));
    QList<include_t> found;
    QDirIterator files(root + _folder, {QStringLiteral("*.h"), QStringLiteral("*.cpp")},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        const QString name = file.fileName().mid(root.size());
        if (!file.open(QIODevice::ReadOnly)) {
            qFatal("cannot read %s", qPrintable(name));
        }
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        for (qsizetype i = 0; i < lines.size(); ++i) {
            const auto match = expression.match(lines[i]);
            if (match.hasMatch()) {
                found.append({QStringLiteral("%1:%2").arg(name).arg(i + 1), name, match.captured(2),
                              match.captured(1) == QLatin1String("\"")});
            }
        }
    }
    return found;
}

}  // namespace

class tst_includes : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void allowed_data() {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("allowed");
        const auto row = [](const char* folder, const char* allowed) {
            QTest::newRow(folder) << QString::fromLatin1(folder) << QString::fromLatin1(allowed);
        };
        // Of quoted includes, those that match the expression from their beginning; a folder's
        // own files are always allowed.
        row("server/utility", "base/|logs/|http/|database/definition/");
        row("server/drivers/driver",
            "base/|logs/|utility/log_line|comunication/protoserver_t|database/database_t");
        row("server/drivers/plugins/plugin_driver_api/data", "base/|logs/|utility/|database/");
        row("server/drivers/plugins/plugin_driver_api/mqtt",
            "base/|logs/|utility/|comunication/(qos_t|topic_\\w+)|router/|"
            "drivers/plugins/plugin_driver_api/data/");
        row("server/drivers/plugins/plugin_driver_api",
            "base/|logs/|utility/|comunication/|router/|database/|drivers/");
        row("base", "base/");
        row("host/logs", "base/");
        row("host/comunication", "base/|logs/");
        row("host/router", "base/|logs/");
        row("host/database", "base/|logs/");
        row("host/http", "base/|logs/");
        row("host/loader", "base/|logs/|comunication/|database/|drivers/driver/");
        row("apps", "[a-z_-]+/|[^/]+\\.h$");
    }
    void allowed() {
        QFETCH(QString, folder);
        QFETCH(QString, allowed);
        const QString own = folder.section(QLatin1Char('/'), 1) + QLatin1Char('/');
        const QRegularExpression expression(
            QStringLiteral("^(?:%1)").arg(allowed.isEmpty() ? QStringLiteral("(?!)") : allowed));
        QStringList forbidden;
        for (const include_t& include : includes_below(folder)) {
            if (include.quoted && !include.name.startsWith(own) &&
                !expression.match(include.name).hasMatch()) {
                forbidden.append(include.place + QStringLiteral(" includes ") + include.name);
            }
        }
        QVERIFY2(forbidden.isEmpty(), qPrintable(forbidden.join(QLatin1Char('\n'))));
    }

    void forbidden_data() {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("file_filter");
        QTest::addColumn<QString>("word");
        const auto row = [](const char* name, const char* folder, const char* files,
                            const char* word) {
            QTest::newRow(name) << QString::fromLatin1(folder) << QString::fromLatin1(files)
                                << QString::fromLatin1(word);
        };
        row("third parties leak from no host header", "host", "\\.h$",
            "^(mosquitto|spdlog|valijson|curl|fmt|QSql|QtSql|sqlite)");
        row("base includes nothing of the project", "base", "", "^(?!base/|Q[A-Z]\\w+$)");
        row("the host includes nothing of the plugin", "host", "^host/(?!loader/)",
            "^(drivers|utility)/");
        row("the loader includes the driver interface only", "host/loader", "",
            "^(drivers/plugins|utility)/");
        row("programs include the driver interface only", "apps", "", "^drivers/plugins/");
        row("only the server reads the settings", "apps", "^apps/(?!torlan-server/)", "^utility/");
        row("the plugin uses no third party", "server", "",
            "^(mosquitto|spdlog|valijson|curl|fmt|QSql|QtSql|sqlite)");
        row("data knows nothing of mqtt", "server/drivers/plugins/plugin_driver_api/data", "",
            "/mqtt/");
        row("nobody includes the plugin class but its entry", "server",
            "^(?!.*/(plugin_entry|plugin_driver_api_t)\\.)", "plugin_driver_api_t\\.h$");
        row("no product file includes a test", "server", "", "^(fakes|tests|contract)/");
        row("no host file includes a test", "host", "", "^(fakes|tests|contract)/");
    }
    void forbidden() {
        QFETCH(QString, folder);
        QFETCH(QString, file_filter);
        QFETCH(QString, word);
        const QRegularExpression files(file_filter);
        const QRegularExpression expression(word);
        QStringList found;
        for (const include_t& include : includes_below(folder)) {
            if (files.match(include.file).hasMatch() && expression.match(include.name).hasMatch()) {
                found.append(include.place + QStringLiteral(" includes ") + include.name);
            }
        }
        QVERIFY2(found.isEmpty(), qPrintable(found.join(QLatin1Char('\n'))));
    }

    void the_search_sees_what_is_there() {
        QVERIFY(includes_below(QStringLiteral("server")).size() > 100);
        QVERIFY(includes_below(QStringLiteral("host")).size() > 50);
        QVERIFY(
            !includes_below(QStringLiteral("server/") + plugin + QStringLiteral("mqtt")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_includes)
#include "tst_includes.moc"

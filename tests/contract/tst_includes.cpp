// Includes point one way, base <- contract <- server <- host <- apps base <- http <- server and
// base <- knx
// <- server, host, apps: a room may include what its row names, and there is a row for every room.
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

namespace {

const QString root = QStringLiteral(SOURCE_ROOT "/");

/// Folders that hold the product's sources.
const QStringList trees{"base", "contract", "http", "knx", "server", "host", "apps", "bench"};

/// Where each include directive stands and what it names.
struct include_t {
    QString file;    ///< below the root
    int line;        ///< from 1
    QString name;    ///< as written
    QString target;  ///< the file of the project that it means; empty: none of the project's

    QString place() const { return QStringLiteral("%1:%2").arg(file).arg(line); }
};

/// The file below the root that an include means; the compiler looks in the same folders.
QString target_of(const QString& _file, const QString& _name) {
    const QString own = _file.section(QLatin1Char('/'), 0, -2) + QLatin1Char('/');
    for (const QString& folder :
         {own, QString(), QStringLiteral("contract/"), QStringLiteral("server/"),
          QStringLiteral("host/"), QStringLiteral("apps/"), QStringLiteral("tests/")}) {
        if (QFile::exists(root + folder + _name)) {
            return QDir::cleanPath(folder + _name);
        }
    }
    return {};
}

QStringList files_below(const QString& _folder) {
    QStringList files;
    QDirIterator each(root + _folder, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                      QDirIterator::Subdirectories);
    while (each.hasNext()) {
        files.append(each.next().mid(root.size()));
    }
    files.sort();
    return files;
}

QList<include_t> includes_of(const QString& _name) {
    static const QRegularExpression expression(
        QStringLiteral(R"(^\s*#\s*include\s*(["<])([^">]+)[">])"));
    QFile file(root + _name);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", qPrintable(_name));
    }
    QList<include_t> found;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const auto match = expression.match(lines[i]);
        if (match.hasMatch()) {
            const QString name = match.captured(2);
            found.append(
                {_name, int(i + 1), name,
                 match.captured(1) == QLatin1String("\"") ? target_of(_name, name) : QString()});
        }
    }
    return found;
}

QList<include_t> includes_below(const QString& _folder) {
    QList<include_t> found;
    for (const QString& file : files_below(_folder)) {
        found += includes_of(file);
    }
    return found;
}

struct row_t {
    const char* folder;
    const char* allowed;  ///< files below the root, from the beginning of their path
};

constexpr const char* plugin = "server/drivers/plugins/plugin_driver_api/";

/// What a room may include besides its own files. The longest row that fits a file is its row.
const QList<row_t> rows{
    {"base", ""},
    {"contract/bus", ""},
    {"contract/comunication", "contract/database/name_rules"},
    {"contract/database", ""},
    {"contract/logs", ""},
    {"contract/router", "base/"},
    {"http", "base/"},
    {"knx", "base/|contract/database/name_rules"},
    {"knx/knxd", "base/|knx/"},
    {"server/utility", "base/|http/|contract/(logs|database/definition)/"},
    {"server/drivers/driver",
     "base/|contract/(bus/bus_port_t|logs/|comunication/protoserver_t|database/database_t)"},
    {"server/drivers/plugins/plugin_driver_api/data",
     "base/|contract/(logs|database)/|server/utility/"},
    {"server/drivers/plugins/plugin_driver_api/mqtt",
     "base/|contract/(logs/|router/|database/permission|comunication/"
     "(api_topics|qos_t|topic_\\w+))|"
     "server/utility/|"
     "server/drivers/plugins/plugin_driver_api/data/"},
    {"server/drivers/plugins/plugin_driver_api",
     "base/|contract/|server/utility/|server/drivers/driver/|"
     "server/drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t"},
    {"server/drivers/plugins/plugin_driver_knx",
     "base/|contract/(bus|logs)/|knx/|server/drivers/driver/"},
    {"host/logs", "base/|contract/logs/"},
    {"host/control", "base/|host/process/(file_lock_t|holder_text|socket_peer)"},
    {"host/endpoint", "base/|contract/(logs|comunication)/|host/process/socket_peer"},
    {"host/process", "base/"},
    {"host/accounts",
     "base/|contract/(database/name_rules|logs/)|host/process/private_folder_t|"
     "host/endpoint/mosquitto_client_t"},
    {"host/audit",
     "base/|contract/(comunication/api_topic_t|database/(name_rules|permission))|"
     "host/(accounts/broker_(account|event)_t|endpoint/exchange_t|live/grant_change_t|"
     "process/trusted_path)"},
    {"host/broker", "base/|contract/(logs|comunication)/|host/(accounts|endpoint|process)/"},
    {"host/broker/plugin", "base/token_bucket_t"},
    {"host/ets", "base/|contract/database/name_rules|knx/(group_address_t|data_point_types)"},
    {"host/installation",
     "base/|contract/(bus/bus_data_t|database/(element_type|name_rules|permission))|"
     "host/accounts/broker_hash|knx/(data_point_types|group_address_t)"},
    {"host/store", "base/|contract/database/name_rules|host/installation/"},
    {"host/live", "base/|contract/(bus|database)/|host/(installation|store)/"},
    {"host/loader", "base/|contract/|server/drivers/driver/|host/process/trusted_path"},
    {"apps/program", "base/"},
    {"apps/gate", "base/|http/loopback"},
    {"apps/torlan-config",
     "base/|http/|apps/(program|gate)/|host/process/(file_lock_t|holder_text)|"
     "host/audit/(audit_log_t|entry_t|file_name|operations)"},
    {"apps/torlan-ets",
     "base/|contract/database/name_rules|host/ets/|host/installation/password_error|"
     "host/accounts/broker_hash|apps/program/"},
    {"apps/torlan-knx-house",
     "base/|knx/|host/installation/installation_t|host/store/sqlite_store_t|apps/program/"},
    {"apps/torlan-run", "base/|apps/program/|host/process/"},
    {"apps/torlan-server",
     "base/|http/|apps/program/|contract/(bus/bus_(counters|settings|telegram)_t|comunication/"
     "(protoserver_t|api_topics)|database/"
     "(database_t|element_type)|"
     "logs/)|host/"
     "(accounts|audit|broker|control|endpoint|installation|live|loader|logs|process|store)/|"
     "server/utility/(cnfserver|http_read_config_server_t|torlan_option_t|utility_t)\\.h"},
    {"apps/torlan-web", "base/|apps/(program|gate)/"},
    {"apps/torlanctl",
     "base/|contract/(comunication/api_topics|database/(element_type|name_rules|permission))|"
     "host/(installation|store)/|host/accounts/broker_hash|host/broker/plugin/topic_judge|host/"
     "audit/(audit_reader_t|file_name|filter_t|people_text)|"
     "host/control/(control_client_t|protocol)|"
     "host/process/(file_lock_t|holder_text|restored_folder_t|trusted_path)|apps/program/|knx/"
     "data_point_(type|types|value)"},
    {"apps/torlanctl/api",
     "base/|contract/(comunication/(api_topics|qos_t)|database/name_rules)|"
     "host/endpoint/mosquitto_client_t|apps/torlanctl/line/outcome_t"},
    {"apps/torlanctl/doctor",
     "base/|contract/(comunication/api_topics|database/name_rules)|host/process/trusted_path|"
     "host/store/(database_check|schema)|apps/program/(file_reader_t|port_holder|version)|"
     "apps/torlanctl/api/api_session_t"},
    {"apps/torlanctl/line", "base/|contract/database/name_rules|apps/program/exit_status_t"},
    {"bench/micro",
     "contract/router/|server/(drivers/plugins/plugin_driver_api|utility)/|tests/fakes/"
     "memory_database_t"},
    {"bench",
     "base/result_t|contract/|host/|server/drivers/driver/|apps/program/|tests/fakes/|"
     "tests/kit/(end_with_test|free_port|lamps_home|password_of)|"
     "tests/system/support/(database_shell_t|host_process_t)"},
};

const row_t* row_of(const QString& _file) {
    const row_t* found = nullptr;
    for (const row_t& row : rows) {
        const QLatin1String folder(row.folder);
        if (_file.startsWith(folder + QLatin1Char('/')) &&
            (found == nullptr || folder.size() > qsizetype(qstrlen(found->folder)))) {
            found = &row;
        }
    }
    return found;
}

}  // namespace

class tst_includes : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void every_room_has_its_row() {
        QStringList without;
        for (const QString& tree : trees) {
            for (const QString& file : files_below(tree)) {
                if (row_of(file) == nullptr) {
                    without.append(file);
                }
            }
        }
        QVERIFY2(without.isEmpty(), qPrintable(without.join(QLatin1Char('\n'))));
    }

    void every_row_has_its_room() {
        for (const row_t& row : rows) {
            QVERIFY2(!files_below(QLatin1String(row.folder)).isEmpty(), row.folder);
        }
    }

    void every_room_says_what_belongs_there() {
        for (const row_t& row : rows) {
            QFile readme(root + QLatin1String(row.folder) + QStringLiteral("/README.md"));
            QVERIFY2(readme.open(QIODevice::ReadOnly), row.folder);
            QCOMPARE(readme.readLine().trimmed(), QByteArray("# ") + row.folder);
        }
    }

    void no_row_allows_everything() {
        for (const row_t& row : rows) {
            const QRegularExpression expression(
                QStringLiteral("^(?:%1)").arg(QLatin1String(row.allowed)));
            QVERIFY(expression.isValid());
            // An application is what nothing may include.
            QVERIFY2(
                qstrlen(row.allowed) == 0 ||
                    !expression.match(QStringLiteral("apps/torlan-server/host_t.h")).hasMatch(),
                row.folder);
        }
    }

    void allowed() {
        QStringList forbidden;
        for (const QString& tree : trees) {
            for (const include_t& include : includes_below(tree)) {
                const row_t* const row = row_of(include.file);
                const QString own = QLatin1String(row->folder) + QLatin1Char('/');
                const QRegularExpression expression(QStringLiteral("^(?:%1)").arg(
                    qstrlen(row->allowed) == 0 ? QStringLiteral("(?!)")
                                               : QLatin1String(row->allowed)));
                if (!include.target.isEmpty() && !include.target.startsWith(own) &&
                    !expression.match(include.target).hasMatch()) {
                    forbidden.append(include.place() + QStringLiteral(" includes ") +
                                     include.target);
                }
            }
        }
        QVERIFY2(forbidden.isEmpty(), qPrintable(forbidden.join(QLatin1Char('\n'))));
    }

    void no_includes_go_round() {
        QMap<QString, QStringList> arrows;
        for (const QString& tree : trees) {
            for (const include_t& include : includes_below(tree)) {
                if (!include.target.isEmpty()) {
                    arrows[include.file].append(include.target);
                }
            }
        }
        // Takes out, again and again, the files that include nothing of what is left.
        QSet<QString> left(arrows.keyBegin(), arrows.keyEnd());
        for (bool taken = true; taken;) {
            taken = false;
            for (const QString& file : arrows.keys()) {
                const QStringList& targets = arrows[file];
                const bool free = std::none_of(
                    targets.begin(), targets.end(),
                    [&left](const QString& _target) { return left.contains(_target); });
                taken = (left.contains(file) && free && left.remove(file)) || taken;
            }
        }
        QVERIFY2(left.isEmpty(), qPrintable(left.values().join(QLatin1Char('\n'))));
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
        constexpr const char* third_parties =
            "^(mosquitto|spdlog|valijson|curl|fmt|QSql|QtSql|sqlite|archive|eibclient)";
        row("third parties leak from no host header", "host", "\\.h$", third_parties);
        row("third parties leak from no HTTP header", "http", "\\.h$", third_parties);
        row("the contract needs Qt Core only", "contract", "",
            "^(mosquitto|spdlog|valijson|curl|fmt|QSql|QtSql|sqlite|QTcp|QHost|QNetwork|Qt\\w+/)");
        row("drivers use no third party", "server", "", third_parties);
        row("knxd's library is included in its place", "knx",
            "^(?!knx/knxd/eib_connection_t\\.cpp$)", third_parties);
        row("nobody includes the plugin class but its entry", "server",
            "^(?!.*/(plugin_entry|plugin_driver_api_t)\\.)", "plugin_driver_api_t\\.h$");
        row("only the server reads the settings", "apps", "^apps/(?!torlan-server/)", "^utility/");
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
                found.append(include.place() + QStringLiteral(" includes ") + include.name);
            }
        }
        QVERIFY2(found.isEmpty(), qPrintable(found.join(QLatin1Char('\n'))));
    }

    void the_search_sees_what_is_there() {
        const auto resolved = [](const QString& _folder) {
            const QList<include_t> all = includes_below(_folder);
            return std::count_if(all.begin(), all.end(), [](const include_t& _include) {
                return !_include.target.isEmpty();
            });
        };
        QVERIFY(resolved(QStringLiteral("server")) > 100);
        QVERIFY(resolved(QStringLiteral("host")) > 50);
        QVERIFY(resolved(QLatin1String(plugin) + QStringLiteral("mqtt")) > 10);
    }
};

QTEST_GUILESS_MAIN(tst_includes)
#include "tst_includes.moc"

#include "system/support/asked_changes_t.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QThread>

#include "kit/end_with_test.h"
#include "system/support/service.h"

namespace support {

namespace {

constexpr int longest_change_ms = 60;
constexpr int tool_ms = 30'000;

const auto lamp = QStringLiteral("e-kitchen-ceiling");
const auto value_query =
    QStringLiteral("SELECT value FROM items WHERE id = 'i-kitchen-temperature'");
const auto grant_query = QStringLiteral(
    "SELECT bits FROM permissions WHERE user = 'u-bob' AND element = 'e-kitchen-ceiling'");

}  // namespace

void asked_changes_t::begin() {
    record.begin("item", stored_once(value_query));
    record.begin("grant", stored_once(grant_query));
    record.begin("setting", stored().value("setting"));
}

void asked_changes_t::ask(int _turn, const std::function<void()>& _meanwhile) {
    static const QMap<QString, QString> bits{
        {"read", "1"}, {"write", "2"}, {"readwrite", "3"}, {"deny", ""}};
    ++number;
    QString thing;
    QString value;
    QStringList command;
    switch (_turn % 4) {
        case 0:
            thing = "item";
            value = QStringLiteral("20.%1").arg(number, 4, 10, QLatin1Char('0'));
            command = {"set", "i-kitchen-temperature", value};
            break;
        case 1: {
            const QString right = bits.keys()[number % 4];
            thing = "grant";
            value = bits[right];
            command = {"grant", "bob", lamp, right};
            break;
        }
        case 2:
            thing = QStringLiteral("user k%1").arg(number);
            record.begin(thing, "0");
            value = "1";
            command = {"user", "add", QStringLiteral("k%1").arg(number)};
            break;
        default:
            put_setting(QString::number(number), _meanwhile);
            return;
    }
    QProcess asking;
    kit::end_with_test(&asking);
    asking.start(TORLANCTL, QStringList{"--data", run->data()} + command);
    asking.write("a password\n");
    asking.closeWriteChannel();
    QTest::qWait(QRandomGenerator::global()->bounded(longest_change_ms));
    _meanwhile();
    QVERIFY(asking.state() == QProcess::NotRunning || asking.waitForFinished(tool_ms));
    // 3: stored, and nobody follows yet.
    record.asked(thing, value, asking.exitCode() == 0 || asking.exitCode() == 3);
}

void asked_changes_t::put_setting(const QString& _value, const std::function<void()>& _meanwhile) {
    const QByteArray answer =
        support::ask(run->config_port(),
                     "PUT /kills HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: " +
                         QByteArray::number(_value.size()) + "\r\n\r\n" + _value.toUtf8(),
                     [&]() {
                         QThread::usleep(QRandomGenerator::global()->bounded(5'000u));
                         _meanwhile();
                     });
    record.asked("setting", _value, answer.startsWith("HTTP/1.1 2"));
}

QString asked_changes_t::stored_once(const QString& _query) const {
    const QString name = QStringLiteral("asked changes");
    QString value;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", name);
        database.setDatabaseName(run->data() + "/installation.db");
        database.setConnectOptions("QSQLITE_OPEN_READONLY");
        database.open();
        QSqlQuery query(database);
        if (query.exec(_query) && query.next()) {
            value = query.value(0).toString();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return value;
}

QMap<QString, QString> asked_changes_t::stored() const {
    QMap<QString, QString> now;
    now["item"] = stored_once(value_query);
    now["grant"] = stored_once(grant_query);
    const QStringList things = record.things();
    for (const QString& thing : things) {
        if (thing.startsWith("user ")) {
            now[thing] =
                stored_once("SELECT count(*) FROM users WHERE username = '" + thing.mid(5) + "'");
        }
    }
    QFile settings(run->data() + "/settings.json");
    if (settings.open(QIODevice::ReadOnly)) {
        const QJsonValue value = QJsonDocument::fromJson(settings.readAll())["kills"];
        now["setting"] = value.isUndefined() ? QString() : QString::number(value.toInt());
    }
    return now;
}

bool asked_changes_t::is_whole() const {
    return stored_once("PRAGMA integrity_check") == "ok" &&
           stored_once("PRAGMA foreign_key_check").isEmpty();
}

}  // namespace support

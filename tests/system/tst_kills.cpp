#include <signal.h>

#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTcpSocket>
#include <QtTest>

#include "kit/end_with_test.h"
#include "kit/has_ended.h"
#include "kit/mqtt_client_t.h"
#include "kit/wait_until.h"
#include "system/support/acknowledged_t.h"
#include "system/support/api_user.h"
#include "system/support/run_process_t.h"
#include "system/support/shown_to_user.h"

using namespace kit;
using namespace support;

/// Every process of an installation is killed while somebody changes it: nothing that was
/// acknowledged is lost, nothing is left behind, everybody is served again. Short here; as a proof
/// 200 times each.
class tst_kills : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void nothing_is_lost_and_all_are_served_again_data();
    void nothing_is_lost_and_all_are_served_again();

 private:
    /// Asks for a change, lets @p _kill happen meanwhile and notes what was acknowledged.
    void change(int _turn, const std::function<void()>& _kill);
    void put_setting(const QString& _value, const std::function<void()>& _kill);
    /// What is stored now of what was ever asked for.
    QMap<QString, QString> stored() const;
    QString stored_once(const QString& _query) const;
    bool is_whole() const;
    /// Whether alice and the settings' user are answered; 30 s each.
    bool is_served() { return is_config_served() && is_user_served(); }
    bool is_config_served() const;
    bool is_user_served() const;
    /// The first line of the configuration server's answer; @p _asked is called meanwhile.
    QByteArray ask_config(const QByteArray& _request, const std::function<void()>& _asked) const;
    /// What is wrong with what a user is shown; empty: nothing.
    QString wrong_for(const QString& _user);

    run_process_t run;
    acknowledged_t record;
};

namespace {

const bool is_proof = qEnvironmentVariableIsSet("TORLAN_PROOF");
const int kills = is_proof ? 200 : 4;  // each kind of change once
constexpr int longest_change_ms = 60;

const auto supervisor = QStringLiteral("torlan-run");
const auto lamp = QStringLiteral("e-kitchen-ceiling");

QString password(const QString& _user) {
    return QStringLiteral("sample-") + _user;
}

}  // namespace

void tst_kills::nothing_is_lost_and_all_are_served_again_data() {
    QTest::addColumn<QString>("victim");
    for (const auto& victim : {QStringLiteral("mosquitto"), QStringLiteral("torlan-server"),
                               QStringLiteral("torlan-config"), supervisor}) {
        QTest::newRow(qPrintable(victim)) << victim;
    }
}

void tst_kills::nothing_is_lost_and_all_are_served_again() {
    QFETCH(QString, victim);
    QVERIFY2(run.process().state() == QProcess::Running || run.start(SAMPLE, {"--no-web"}),
             run.shown());
    record.begin("item", stored_once("SELECT value FROM items WHERE id = 'i-kitchen-temperature'"));
    record.begin("grant", stored_once("SELECT bits FROM permissions WHERE user = 'u-bob' AND "
                                      "element = 'e-kitchen-ceiling'"));
    record.begin("setting", stored().value("setting"));
    QVERIFY(is_served());
    QList<qint64> recoveries;
    for (int turn = 0; turn < kills; ++turn) {
        const qint64 killed =
            victim == supervisor ? run.process().processId() : run.descendant(victim);
        QVERIFY2(killed > 1, qPrintable(victim));
        const QList<qint64> family = run.descendants();
        QElapsedTimer clock;
        change(turn, [&]() {
            ::kill(pid_t(killed), SIGKILL);
            clock.start();
        });
        QVERIFY(wait_until([&]() { return has_ended(killed); }));
        if (victim == supervisor) {
            QVERIFY(run.process().state() == QProcess::NotRunning ||
                    run.process().waitForFinished());
            for (const qint64 process : family) {
                QVERIFY2(wait_until([&]() { return has_ended(process); }),
                         qPrintable(QString::number(process)));
            }
            QVERIFY2(run.start(SAMPLE, {"--no-web"}), run.shown());
        } else {
            QVERIFY(wait_until([&]() {
                const qint64 now = run.descendant(victim);
                return now > 1 && now != killed;
            }));
        }
        QVERIFY2(is_served(), qPrintable(QString::number(turn)));
        recoveries += clock.elapsed();
        QVERIFY(is_whole());
        const QStringList lost = record.lost(stored());
        QVERIFY2(lost.isEmpty(), qPrintable(lost.join("; ")));
        if (turn % 20 == 0 || turn + 1 == kills) {
            for (const auto user : {"alice", "bob", "carol", "dave"}) {
                QString wrong;
                wait_until([&]() { return (wrong = wrong_for(user)).isEmpty(); });
                QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
            }
        }
    }
    std::sort(recoveries.begin(), recoveries.end());
    qInfo(
        "%s killed %d times: %d changes acknowledged so far, 0 lost; served again after %lld ms, "
        "%lld at worst",
        qPrintable(victim), kills, record.acknowledged(), recoveries[recoveries.size() / 2],
        recoveries.last());
}

void tst_kills::change(int _turn, const std::function<void()>& _kill) {
    static const QMap<QString, QString> bits{
        {"read", "1"}, {"write", "2"}, {"readwrite", "3"}, {"deny", ""}};
    static int number = 0;
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
            put_setting(QString::number(number), _kill);
            return;
    }
    QProcess asking;
    kit::end_with_test(&asking);
    asking.start(TORLANCTL, QStringList{"--data", run.data()} + command);
    asking.write("a password\n");
    asking.closeWriteChannel();
    QTest::qWait(QRandomGenerator::global()->bounded(longest_change_ms));
    _kill();
    QVERIFY(asking.state() == QProcess::NotRunning || asking.waitForFinished());
    // 3: stored, and nobody follows yet.
    record.asked(thing, value, asking.exitCode() == 0 || asking.exitCode() == 3);
}

void tst_kills::put_setting(const QString& _value, const std::function<void()>& _kill) {
    const QByteArray answer =
        ask_config("PUT /kills HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: " +
                       QByteArray::number(_value.size()) + "\r\n\r\n" + _value.toUtf8(),
                   [&]() {
                       QThread::usleep(QRandomGenerator::global()->bounded(5'000u));
                       _kill();
                   });
    record.asked("setting", _value, answer.startsWith("HTTP/1.1 2"));
}

QByteArray tst_kills::ask_config(const QByteArray& _request,
                                 const std::function<void()>& _asked) const {
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", run.config_port());
    if (socket.waitForConnected()) {
        socket.write(_request);
        socket.waitForBytesWritten();
    }
    _asked();
    while (!socket.canReadLine() && socket.waitForReadyRead()) {
    }
    return socket.readLine();
}

QString tst_kills::stored_once(const QString& _query) const {
    QString value;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "kills");
        database.setDatabaseName(run.data() + "/installation.db");
        database.setConnectOptions("QSQLITE_OPEN_READONLY");
        database.open();
        QSqlQuery query(database);
        if (query.exec(_query) && query.next()) {
            value = query.value(0).toString();
        }
    }
    QSqlDatabase::removeDatabase("kills");
    return value;
}

QMap<QString, QString> tst_kills::stored() const {
    QMap<QString, QString> now;
    now["item"] = stored_once("SELECT value FROM items WHERE id = 'i-kitchen-temperature'");
    now["grant"] = stored_once(
        "SELECT bits FROM permissions WHERE user = 'u-bob' AND element = 'e-kitchen-ceiling'");
    const QStringList things = record.things();
    for (const QString& thing : things) {
        if (thing.startsWith("user ")) {
            now[thing] =
                stored_once("SELECT count(*) FROM users WHERE username = '" + thing.mid(5) + "'");
        }
    }
    QFile settings(run.data() + "/settings.json");
    if (settings.open(QIODevice::ReadOnly)) {
        const QJsonValue value = QJsonDocument::fromJson(settings.readAll())["kills"];
        now["setting"] = value.isUndefined() ? QString() : QString::number(value.toInt());
    }
    return now;
}

bool tst_kills::is_whole() const {
    return stored_once("PRAGMA integrity_check") == "ok" &&
           stored_once("PRAGMA foreign_key_check").isEmpty();
}

bool tst_kills::is_config_served() const {
    return wait_until(
        [this]() {
            return ask_config("GET /static HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n", []() {})
                .startsWith("HTTP/1.1 200");
        },
        30'000);
}

bool tst_kills::is_user_served() const {
    const QDeadlineTimer limit(30'000);
    while (!limit.hasExpired()) {
        mqtt_client_t alice;
        if (alice.sign_in(run.port(), "alice", password("alice")) == 0 &&
            alice.subscribe("local/api/v1/alice/me/#") &&
            alice.publish(request_topic("alice", "get", lamp), "{}") == 0 &&
            alice.wait_for("local/api/v1/alice/me/status/get/elements/objects_list/" + lamp,
                           2'000)) {
            return true;
        }
    }
    return false;
}

QString tst_kills::wrong_for(const QString& _user) {
    const QSet<QByteArray> due = states_due(run.data(), _user);
    const auto retained = states_retained(run.port(), _user, password(_user));
    const QList<QByteArray> topics = retained.keys();
    mqtt_client_t user;
    if (user.sign_in(run.port(), _user, password(_user)) != 0 ||
        !user.subscribe(QStringLiteral("local/api/v1/%1/me/#").arg(_user))) {
        return _user + " is not let in";
    }
    const QJsonObject all = user.request(request_topic(_user, "get"))["data"].toObject();
    for (const QByteArray& topic : topics) {
        const QString element = QString::fromUtf8(topic).section('/', -1);
        const QJsonObject functions =
            QJsonDocument::fromJson(retained[topic])["data"]["functions"].toObject();
        const QJsonObject read = all[element]["functions"].toObject();
        for (auto function = functions.begin(); function != functions.end(); ++function) {
            if (read[function.key()] != function.value()) {
                return topic + ": another value of " + function.key();
            }
        }
    }
    // An element without a function has no state.
    QSet<QByteArray> read;
    const QStringList elements = all.keys();
    for (const QString& element : elements) {
        read += state_topic(_user, element).toUtf8();
    }
    const QSet<QByteArray> shown(topics.begin(), topics.end());
    if (shown != read || !due.contains(shown)) {
        return QStringLiteral("%1: %2 states, %3 elements read, %4 in the database")
            .arg(_user)
            .arg(shown.size())
            .arg(read.size())
            .arg(due.size());
    }
    return {};
}

QTEST_GUILESS_MAIN(tst_kills)
#include "tst_kills.moc"

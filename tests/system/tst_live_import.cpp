#include <QFile>
#include <QtTest>

#include "kit/end_with_test.h"
#include "kit/lamps_home.h"
#include "kit/small_home.h"
#include "kit/wait_until.h"
#include "system/support/api_user.h"
#include "system/support/shown_to_user.h"

using namespace kit;
using namespace support;

/// A large import while somebody reads: nobody waits long for it, and it counts when the command
/// says so, or soon after. As a proof with 10,000 elements.
class tst_live_import : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void nobody_waits_for_a_live_import_data();
    void nobody_waits_for_a_live_import();

 private:
    /// Writes the document for torlanctl.
    QString file_of(const QJsonObject& _home) const;
    /// The longest time between a question and its answer while torlanctl imports and until a
    /// while after it; -1: one had no answer.
    qint64 longest_wait(QProcess* _import);

    host_process_t host;
};

namespace {

const bool is_proof = qEnvironmentVariableIsSet("TORLAN_PROOF");
const int lamps = is_proof ? 10'000 : 1'000;
constexpr int people = 10;
/// Of a debug build, which is not what users run.
const qint64 longest_ms = is_proof ? 2'000 : 5'000;
constexpr qint64 told_ms = 200;
/// Until what follows an import by time has followed.
const int behind_it_ms = is_proof ? 20'000 : 3'000;

QJsonObject home(int _lamps) {
    return lamps_home(_lamps, _lamps, numbered_users(people));
}

/// Every element has another name.
QJsonObject renamed(QJsonObject _home) {
    QJsonObject elements = _home["elements"].toObject();
    for (auto element = elements.begin(); element != elements.end(); ++element) {
        QJsonObject changed = element->toObject();
        changed["name"] = "New " + changed["name"].toString();
        *element = changed;
    }
    _home["elements"] = elements;
    return _home;
}

/// Nobody but the first two users may do anything.
QJsonObject withdrawn(QJsonObject _home) {
    const QJsonObject grants = _home["permissions"].toObject();
    _home["permissions"] =
        QJsonObject{{"u-user0", grants["u-user0"]}, {"u-user1", grants["u-user1"]}};
    return _home;
}

}  // namespace

void tst_live_import::nobody_waits_for_a_live_import_data() {
    QTest::addColumn<QJsonObject>("imported");
    QTest::newRow("from few elements to many") << home(lamps);
    QTest::newRow("other names") << renamed(home(lamps));
    QTest::newRow("most rights withdrawn") << withdrawn(renamed(home(lamps)));
    QTest::newRow("back to few elements") << home(10);
}

void tst_live_import::nobody_waits_for_a_live_import() {
    QFETCH(QJsonObject, imported);
    if (!host.is_running()) {
        QVERIFY2(host.import(home(10)), qPrintable(host.error()));
        QVERIFY2(host.start(), qPrintable(host.error()));
    }
    QProcess import;
    end_with_test(&import);
    import.setProgram(TORLANCTL);
    import.setArguments({"--data", host.data(), "import", file_of(imported)});
    const qint64 longest = longest_wait(&import);
    const QByteArray error = import.readAllStandardError();
    QCOMPARE(import.exitStatus(), QProcess::NormalExit);
    // What takes more than 5 s is stored, and says so.
    QVERIFY2(import.exitCode() == 0 || (is_proof && import.exitCode() == 3 &&
                                        error.contains("takes over a large change")),
             error);
    QVERIFY(longest >= 0);
    QVERIFY(longest < longest_ms);
    for (int user = 0; user < people; ++user) {
        const QString name = numbered_users(people)[user];
        const QSet<QByteArray> due = states_due(host.data(), name);
        QVERIFY(wait_until([&]() {
            const auto states = states_retained(host.port(), name, password_of(name)).keys();
            return QSet<QByteArray>(states.begin(), states.end()) == due;
        }));
    }
}

QString tst_live_import::file_of(const QJsonObject& _home) const {
    QFile file(host.data() + "/live.json");
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QJsonDocument(_home).toJson());
    }
    return file.fileName();
}

qint64 tst_live_import::longest_wait(QProcess* _import) {
    mqtt_client_t reader;
    if (reader.sign_in(host.port(), "user0", password_of("user0")) != 0 ||
        !reader.subscribe("local/api/v1/user0/me/#")) {
        return -1;
    }
    QList<qint64> waits;
    qint64 took = 0;
    QDeadlineTimer end(QDeadlineTimer::Forever);
    QElapsedTimer since_begin;
    since_begin.start();
    _import->start();
    QStringList long_ones;
    while (!end.hasExpired()) {
        QElapsedTimer clock;
        clock.start();
        if (reader.request(request_topic("user0", "get", lamp_id(3))).isEmpty()) {
            return -1;
        }
        waits += clock.elapsed();
        if (waits.last() >= told_ms) {
            long_ones += QStringLiteral("%1 after %2").arg(waits.last()).arg(since_begin.elapsed());
        }
        reader.forget();
        QTest::qWait(1);
        if (took == 0 && _import->state() == QProcess::NotRunning) {
            took = since_begin.elapsed();
            end = QDeadlineTimer(behind_it_ms);
        }
    }
    std::sort(waits.begin(), waits.end());
    qInfo(
        "%s: import took %lld ms; %lld reads, median %lld, p99 %lld, longest %lld ms; long ones, "
        "ms: "
        "%s",
        QTest::currentDataTag(), took, qint64(waits.size()), waits[waits.size() / 2],
        waits[waits.size() * 99 / 100], waits.last(), qPrintable(long_ones.join(", ")));
    return waits.last();
}

QTEST_GUILESS_MAIN(tst_live_import)
#include "tst_live_import.moc"

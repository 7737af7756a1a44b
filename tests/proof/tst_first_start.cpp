#include <QtTest>

#include "kit/free_port.h"
#include "system/support/config_process_t.h"

/// The first start is killed at each of its changes of a file; the next one has to be as if nothing
/// had been.
class tst_first_start : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void killed_at_200_points_it_starts_whole_the_next_time();

 private:
    /// What it said until it was ready, or had ended.
    QByteArray start(const QString& _data, quint16 _config_port, int _kill_at) {
        QProcess server;
        auto environment = QProcessEnvironment::systemEnvironment();
        if (_kill_at > 0) {
            environment.insert("LD_PRELOAD", KILL_AT_CHANGE);
            environment.insert("TORLAN_KILL_AT_CHANGE", QString::number(_kill_at));
        }
        server.setProcessEnvironment(environment);
        server.setProcessChannelMode(QProcess::MergedChannels);
        server.start(TORLAN_SERVER,
                     {"--data", _data, "--port", QString::number(port), "--config-port",
                      QString::number(_config_port), "--sample", SAMPLE});
        QByteArray said;
        while (!said.contains("torlan: ready") && server.waitForReadyRead(30000)) {
            said += server.readAll();
        }
        was_killed =
            server.state() == QProcess::NotRunning && server.exitStatus() == QProcess::CrashExit;
        if (server.state() != QProcess::NotRunning && !said.contains("torlan: ready")) {
            was_killed = server.waitForFinished(1000) && server.exitStatus() == QProcess::CrashExit;
        }
        server.terminate();
        server.waitForFinished(15000);
        return said + server.readAll();
    }

    const quint16 port = kit::free_port();
    bool was_killed = false;
};

void tst_first_start::killed_at_200_points_it_starts_whole_the_next_time() {
    const QTemporaryDir settings;
    QFile file(settings.filePath("settings.json"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("{\"static\": {}}") > 0);
    file.close();
    support::config_process_t config(file.fileName());
    int points = 0;
    // All of the beginning, then a tenth of what comes: most of it is the log.
    for (int change = 1; points < 200; change += change < 150 ? 1 : 10) {
        const QTemporaryDir home;
        const QString data = home.filePath("data");
        const QByteArray first = start(data, config.port(), change);
        if (!was_killed) {
            QVERIFY2(first.contains("torlan: ready"), first);
            break;
        }
        ++points;
        const QByteArray second = start(data, config.port(), 0);
        QVERIFY2(second.contains("(44 elements, 4 users)"),
                 qPrintable(QStringLiteral("after a kill at change %1: %2")
                                .arg(change)
                                .arg(QString::fromUtf8(second))));
    }
    qInfo("%d points, 0 ruined installations", points);
    QVERIFY(points > 100);
}

QTEST_GUILESS_MAIN(tst_first_start)
#include "tst_first_start.moc"

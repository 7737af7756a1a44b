#include <QProcess>
#include <QTest>

#include "unit/server/utility/support/config_server_t.h"

/// The client ends its process when a new installation id cannot be stored.
class tst_installation_id_exit : public QObject {
    Q_OBJECT

 private:
    /// Runs the client's process against @p _server; all it printed.
    static QStringList run(const config_server_t& _server, const char* _logging, int& _code) {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral(READ_CONFIGURATION),
                      {QString::number(_server.port()), QLatin1String(_logging)});
        const bool finished = process.waitForFinished(60000);
        _code = finished && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        return QString::fromUtf8(process.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

 private Q_SLOTS:
    void a_stored_id_lets_the_process_go_on() {
        config_server_t server;
        server.answer(
            "GET", "200 OK",
            "{\"static\":{\"torlan\":{\"paths\":{\"client_communication\":\"/nowhere\"}}}}");
        server.answer("PUT", "200 OK", "{}");
        int code = -1;
        run(server, "log", code);
        QCOMPARE(code, 42);
    }

    void an_id_that_cannot_be_stored_ends_the_process_with_status_0_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("logs");

        const QByteArray refused = "HTTP/1.1 500 Broken\r\nContent-Length: 2\r\n\r\n{}";
        QTest::newRow("refused") << refused << true;
        QTest::newRow("closed") << QByteArray() << true;
        QTest::newRow("without a logger") << refused << false;
    }

    void an_id_that_cannot_be_stored_ends_the_process_with_status_0() {
        QFETCH(const QByteArray, answer);
        QFETCH(const bool, logs);
        config_server_t server;
        server.answer("GET", "200 OK", "{\"a\":1}");
        server.answer_raw("PUT", answer);
        int code = -1;
        const QStringList lines = run(server, logs ? "log" : "quiet", code);
        QVERIFY2(code == 0, qPrintable(lines.join(QLatin1Char('\n'))));
        QCOMPARE(server.requests().size(), 2);
        if (!logs) {
            QVERIFY2(lines.isEmpty(), qPrintable(lines.join(QLatin1Char('\n'))));
            return;
        }
        QCOMPARE(lines.size(), 3);
        QCOMPARE(
            lines.last(),
            QStringLiteral("0 Unable to genarate installation id ... check_HTTP_InstallationId "
                           "server/utility/http_read_config_server_t 1"));
    }
};

QTEST_GUILESS_MAIN(tst_installation_id_exit)
#include "tst_installation_id_exit.moc"

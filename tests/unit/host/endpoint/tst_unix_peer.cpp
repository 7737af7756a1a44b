#include "endpoint/unix_peer.h"

#include <unistd.h>

#include <QFile>
#include <QLocalServer>
#include <QTemporaryDir>
#include <QTest>

#include "unit/host/broker/plugin/plugin_broker_t.h"

class tst_unix_peer : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void broker_is_known_by_its_process();
    void another_process_is_known_too();
    void nobody_listens();
};

void tst_unix_peer::broker_is_known_by_its_process() {
    plugin_broker_t real;
    QVERIFY(real.connect_host());
    const auto process = comunication::listening_process(real.path);
    QVERIFY(process);
    QCOMPARE(qint64(*process), real.process.processId());
}

void tst_unix_peer::another_process_is_known_too() {
    const QTemporaryDir folder;
    QLocalServer server;
    QVERIFY(server.listen(folder.filePath("socket")));
    QVERIFY(comunication::listening_process(folder.filePath("socket")) == ::getpid());
}

void tst_unix_peer::nobody_listens() {
    const QTemporaryDir folder;
    QVERIFY(!comunication::listening_process(folder.filePath("none")));
    QFile file(folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!comunication::listening_process(file.fileName()));
    QVERIFY(!comunication::listening_process(QString(200, u'x')));
    QVERIFY(!comunication::listening_process({}));
}

QTEST_GUILESS_MAIN(tst_unix_peer)
#include "tst_unix_peer.moc"

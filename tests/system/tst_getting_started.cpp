#include <QtTest>

#include "kit/end_with_test.h"
#include "kit/wait_until.h"
#include "system/support/document_blocks.h"
#include "system/support/host_process_t.h"

using namespace kit;
using namespace support;

/// docs/getting-started.md as its reader types it, on a server that runs already; the packages and
/// the first start are what ./test --target newcomer is for.
class tst_getting_started : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void every_command_does_what_it_says();
};

void tst_getting_started::every_command_does_what_it_says() {
    host_process_t host;
    QVERIFY2(host.control({"import", SAMPLE}) == 0, qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    QList<document_block_t> blocks = document_blocks(DOCUMENT);
    QVERIFY(blocks.size() > 6);
    QCOMPARE(blocks.takeFirst().commands, QString("./run\n"));
    const QTemporaryDir home;
    QString session = QStringLiteral("set -eu\ncd '%1'\n").arg(ROOT);
    for (const document_block_t& block : qAsConst(blocks)) {
        QString commands = block.commands;
        static const QRegularExpression package(QStringLiteral("^apt-get .*$"),
                                                QRegularExpression::MultilineOption);
        commands.replace(package, ":")
            .replace("build/release/bin/torlanctl", TORLANCTL)
            .replace("--data var", "--data '" + host.data() + "'")
            .replace("-p 1883", "-p " + QString::number(host.port()));
        session += "echo \"# block\"\n" + commands;
    }
    QProcess shell;
    kit::end_with_test(&shell);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", home.path());
    environment.insert("PATH", "/usr/sbin:/usr/bin:/sbin:/bin");  // Debian's Python, with its paho
    environment.insert("TORLAN_PORT", QString::number(host.port()));
    shell.setProcessEnvironment(environment);
    shell.start("/bin/bash", {"-c", session});
    shell.closeWriteChannel();
    QVERIFY(wait_until([&]() { return shell.state() == QProcess::NotRunning; }, 60'000));
    const QString complaints = QString::fromUtf8(shell.readAllStandardError());
    QStringList said = QString::fromUtf8(shell.readAllStandardOutput()).split("# block\n");
    QVERIFY2(shell.exitCode() == 0, qPrintable(said.last() + complaints));
    QCOMPARE(said.takeFirst(), QString());
    QCOMPARE(said.size(), blocks.size());
    for (qsizetype i = 0; i < blocks.size(); ++i) {
        if (!blocks[i].printed.isEmpty()) {
            QCOMPARE(said[i], blocks[i].printed);
        }
    }
}

QTEST_GUILESS_MAIN(tst_getting_started)
#include "tst_getting_started.moc"

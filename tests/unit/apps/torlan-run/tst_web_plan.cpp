#include "web_plan.h"

#include <QFile>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

using torlan::options_t;
using torlan::plan_web;

class tst_web_plan : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        pages = std::make_unique<QTemporaryDir>();
        QFile library(pages->filePath("mqtt.js"));
        QVERIFY(library.open(QIODevice::WriteOnly));
        options = {};
    }

    void ports_that_were_asked_for_are_taken() {
        QTcpServer free;
        QVERIFY(free.listen(QHostAddress::LocalHost));
        const quint16 port = free.serverPort();
        free.close();
        options.web_port = port;
        options.ws_port = quint16(7);
        const auto plan = plan_web(options, pages->path());
        QCOMPARE(plan.error, QString());
        QCOMPARE(plan.value.web->port, port);
        QCOMPARE(plan.value.web->ws_port, quint16(7));
        QVERIFY(plan.value.told.isEmpty());
    }

    void usual_port_that_is_busy_gives_way() {
        // Whoever has them, two usual ports that other options take are busy for certain.
        options.port = quint16(4322);
        options.config_port = 9001;
        const auto plan = plan_web(options, pages->path());
        QVERIFY(plan.is_ok() && plan.value.web);
        QCOMPARE(plan.value.told.size(), 2);
        QVERIFY2(plan.value.told[0].contains(
                     QStringLiteral("port 9001 is taken by another option; WebSockets are on port "
                                    "%1 instead.")
                         .arg(plan.value.web->ws_port)),
                 qPrintable(plan.value.told[0]));
        QVERIFY(plan.value.told[1].contains("the console is on port"));
        QVERIFY(plan.value.web->port != plan.value.web->ws_port);
        QVERIFY(plan.value.web->port > 0 && plan.value.web->port != 4322);
    }

    void busy_port_that_was_asked_for_is_a_failure() {
        QTcpServer holder;
        QVERIFY(holder.listen(QHostAddress::LocalHost));
        options.web_port = holder.serverPort();
        const auto plan = plan_web(options, pages->path());
        QVERIFY2(
            plan.error.startsWith(
                QStringLiteral("Port %1 of 127.0.0.1 is already in use").arg(holder.serverPort())),
            qPrintable(plan.error));
    }

    void console_is_left_out_data() {
        QTest::addColumn<options_t>("given");
        QTest::addColumn<bool>("has_library");
        QTest::addColumn<QString>("told");
        options_t none;
        none.no_web = true;
        QTest::newRow("nobody wants it") << none << true << QString();
        options_t dry;
        dry.ws_port = quint16(0);
        QTest::newRow("no WebSockets") << dry << true << "it needs WebSockets";
        QTest::newRow("no library") << options_t() << false << "could not be fetched";
    }
    void console_is_left_out() {
        QFETCH(options_t, given);
        QFETCH(bool, has_library);
        QFETCH(QString, told);
        if (!has_library) {
            QVERIFY(QFile::remove(pages->filePath("mqtt.js")));
        }
        const auto plan = plan_web(given, pages->path());
        QVERIFY(plan.is_ok() && !plan.value.web);
        QCOMPARE(plan.value.told.size(), told.isEmpty() ? 0 : 1);
        QVERIFY(told.isEmpty() || plan.value.told[0].contains(told));
    }

 private:
    std::unique_ptr<QTemporaryDir> pages;
    options_t options;
};

QTEST_GUILESS_MAIN(tst_web_plan)
#include "tst_web_plan.moc"

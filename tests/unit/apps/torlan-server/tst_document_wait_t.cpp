#include "document_wait_t.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <memory>

#include "fakes/tiny_http_server_t.h"
#include "http/http_t.h"
#include "utility/cnfserver.h"

using fakes::tiny_http_server_t;
using torlan::document_wait_t;

class tst_document_wait_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void an_answer_is_the_document() {
        serve(tiny_http_server_t::json(R"({"a": 1})"));
        document_wait_t wait(address(), 0);
        QSignalSpy waiting(&wait, &document_wait_t::waiting);
        const auto result = wait.run();
        QCOMPARE(result.error, QString());
        QCOMPARE(result.value, (QJsonObject{{"a", 1}}));
        QCOMPARE(waiting.size(), 0);
    }

    void no_answer_in_time_is_one_sentence_and_the_wait_is_told_once() {
        serve(nothing_yet());
        document_wait_t wait(address(), 1);
        QSignalSpy waiting(&wait, &document_wait_t::waiting);
        QElapsedTimer clock;
        clock.start();
        const QString error = wait.run().error;
        QVERIFY(clock.elapsed() >= 1000);
        QVERIFY2(error.contains("within 1 s") && error.contains("503"), qPrintable(error));
        QCOMPARE(waiting.size(), 1);
        QCOMPARE(waiting[0][0].toString(),
                 "waiting up to 1 s for the configuration server at " + address());
        QVERIFY(server->requests().size() > 1);
    }

    void without_patience_one_question_is_put() {
        serve(nothing_yet());
        QVERIFY(!document_wait_t(address(), 0).run().is_ok());
        QCOMPARE(server->requests().size(), 1);
    }

    void an_answer_after_a_while_is_good() {
        std::atomic<int> questions = 0;
        server = std::make_unique<tiny_http_server_t>([&questions](const auto&) {
            return ++questions < 3 ? nothing_yet() : tiny_http_server_t::json(R"({"a": 1})");
        });
        QVERIFY(http_t::map_base(utility::cnfserver::base, server->port()));
        QCOMPARE(document_wait_t(address(), 60).run().value, (QJsonObject{{"a", 1}}));
    }

    void giving_up_ends_the_wait_data() {
        QTest::addColumn<bool>("before");
        QTest::newRow("while it waits") << false;
        QTest::newRow("before it begins") << true;
    }
    void giving_up_ends_the_wait() {
        QFETCH(bool, before);
        serve(nothing_yet());
        document_wait_t wait(address(), 3600);
        if (before) {
            wait.give_up();
        } else {
            connect(&wait, &document_wait_t::waiting, &wait, &document_wait_t::give_up,
                    Qt::QueuedConnection);
        }
        QCOMPARE(wait.run().error, QStringLiteral("The start was broken off."));
        QCOMPARE(server->requests().size(), before ? 0 : 1);
    }

 private:
    static tiny_http_server_t::answer_t nothing_yet() {
        return tiny_http_server_t::json("{}", "503 Service Unavailable");
    }
    void serve(const tiny_http_server_t::answer_t& _answer) {
        server = std::make_unique<tiny_http_server_t>(_answer);
        QVERIFY(http_t::map_base(utility::cnfserver::base, server->port()));
    }
    QString address() const { return server->url(); }

    std::unique_ptr<tiny_http_server_t> server;
};

QTEST_GUILESS_MAIN(tst_document_wait_t)
#include "tst_document_wait_t.moc"

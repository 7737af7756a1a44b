#include <QTest>
#include <QThread>
#include <atomic>
#include <memory>

#include "router/mqtt_router_t.h"

using mqtt::mqtt_router_t;
using mqtt::PRIORITY_ROUTE;

namespace {

using headers_t = QMap<QString, QVariant>;

mqtt_router_t::handler_t answer(const char* _text) {
    return [_text](const QString&, const QVariant&, const QStringList&, const headers_t&) {
        return QJsonValue(QLatin1String(_text));
    };
}

QString ask(const mqtt_router_t& _router, const QString& _topic) {
    return _router.process(_topic, {}, {}).toJsonValue().toString();
}

}  // namespace

class tst_mqtt_router_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void only_the_whole_topic_matches_data() {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("topic");
        QTest::addColumn<bool>("matches");
        QTest::newRow("equal") << "a/b"
                               << "a/b" << true;
        QTest::newRow("text before") << "a/b"
                                     << "x/a/b" << false;
        QTest::newRow("text behind") << "a/b"
                                     << "a/b/c" << false;
        QTest::newRow("line feed behind") << "a/b"
                                          << "a/b\n"
                                          << false;
        QTest::newRow("line feed before") << "a/b"
                                          << "\na/b" << false;
        QTest::newRow("upper case") << "a/b"
                                    << "A/b" << false;
        QTest::newRow("group") << "a/([0-9]+)"
                               << "a/42" << true;
        QTest::newRow("every branch of an alternative") << "a|b"
                                                        << "bc" << false;
        QTest::newRow("second branch") << "a|b"
                                       << "b" << true;
        QTest::newRow("empty pattern and topic") << ""
                                                 << "" << true;
    }
    void only_the_whole_topic_matches() {
        QFETCH(QString, pattern);
        QFETCH(QString, topic);
        mqtt_router_t router;
        QVERIFY(router.route(pattern, answer("yes"), PRIORITY_ROUTE::NORMAL));
        QTEST(ask(router, topic) == QStringLiteral("yes"), "matches");
    }

    void anchors_in_the_pattern_do_not_match_before_a_line_feed() {
        mqtt_router_t router;
        QVERIFY(router.route(QStringLiteral("^a$"), answer("yes"), PRIORITY_ROUTE::NORMAL));
        QCOMPARE(ask(router, QStringLiteral("a")), QStringLiteral("yes"));
        QVERIFY(!router.process(QStringLiteral("a\n"), {}, {}).isValid());
    }

    void the_handler_gets_topic_payload_captures_and_headers() {
        mqtt_router_t router;
        const auto handler = [](const QString& _topic, const QVariant& _payload,
                                const QStringList& _captures, const headers_t& _headers) {
            return QJsonValue(
                QStringList({_topic, _payload.toString(), _captures.join(QLatin1Char(';')),
                             _headers.value(QStringLiteral("k")).toString()})
                    .join(QLatin1Char(',')));
        };
        QVERIFY(router.route(QStringLiteral("(a)/(b)"), handler, PRIORITY_ROUTE::NORMAL));
        const QVariant said =
            router.process(QStringLiteral("a/b"), 7, {{QStringLiteral("k"), QStringLiteral("v")}});
        QCOMPARE(said.toJsonValue().toString(), QStringLiteral("a/b,7,a/b;a;b,v"));
    }

    void the_highest_priority_wins_then_the_older_route() {
        mqtt_router_t router;
        QVERIFY(router.route(QStringLiteral(".*"), answer("low"), PRIORITY_ROUTE::LOW));
        QVERIFY(router.route(QStringLiteral("a.*"), answer("first"), PRIORITY_ROUTE::NORMAL));
        QVERIFY(router.route(QStringLiteral("ab.*"), answer("second"), PRIORITY_ROUTE::NORMAL));
        QVERIFY(router.route(QStringLiteral("abc"), answer("high"), PRIORITY_ROUTE::HIGH));
        QCOMPARE(ask(router, QStringLiteral("abc")), QStringLiteral("high"));
        QCOMPARE(ask(router, QStringLiteral("abd")), QStringLiteral("first"));
        QCOMPARE(ask(router, QStringLiteral("x")), QStringLiteral("low"));
    }

    void an_existing_pattern_is_replaced() {
        mqtt_router_t router;
        QVERIFY(router.route(QStringLiteral("a"), answer("old"), PRIORITY_ROUTE::HIGH));
        QVERIFY(router.route(QStringLiteral("a"), answer("new"), PRIORITY_ROUTE::LOW));
        QCOMPARE(ask(router, QStringLiteral("a")), QStringLiteral("new"));
        router.route_remove(QStringLiteral("a"));
        QVERIFY(!router.process(QStringLiteral("a"), {}, {}).isValid());
    }

    void an_invalid_pattern_is_refused() {
        mqtt_router_t router;
        QVERIFY(!router.route(QStringLiteral("a("), answer("no"), PRIORITY_ROUTE::NORMAL));
        QVERIFY(!router.process(QStringLiteral("a("), {}, {}).isValid());
    }

    void removing_an_unknown_pattern_changes_nothing() {
        mqtt_router_t router;
        QVERIFY(router.route(QStringLiteral("a"), answer("yes"), PRIORITY_ROUTE::NORMAL));
        router.route_remove(QStringLiteral("b"));
        QCOMPARE(ask(router, QStringLiteral("a")), QStringLiteral("yes"));
    }

    void without_a_match_the_fallback_answers_with_no_captures() {
        mqtt_router_t router;
        QVERIFY(!router.process(QStringLiteral("a"), {}, {}).isValid());
        router.no_route([](const QString& _topic, const QVariant&, const QStringList& _captures,
                           const headers_t&) {
            return QJsonValue(_topic + QString::number(_captures.size()));
        });
        QCOMPARE(ask(router, QStringLiteral("a")), QStringLiteral("a0"));
        router.no_route({});
        QVERIFY(!router.process(QStringLiteral("a"), {}, {}).isValid());
    }

    void a_handler_may_remove_its_own_route_and_add_another() {
        mqtt_router_t router;
        const auto handler = [&router](const QString&, const QVariant&, const QStringList&,
                                       const headers_t&) {
            router.route_remove(QStringLiteral("a"));
            router.route(QStringLiteral("b"), answer("b"), PRIORITY_ROUTE::NORMAL);
            return QJsonValue(QStringLiteral("a"));
        };
        QVERIFY(router.route(QStringLiteral("a"), handler, PRIORITY_ROUTE::NORMAL));
        QCOMPARE(ask(router, QStringLiteral("a")), QStringLiteral("a"));
        QVERIFY(!router.process(QStringLiteral("a"), {}, {}).isValid());
        QCOMPARE(ask(router, QStringLiteral("b")), QStringLiteral("b"));
    }

    // The handler object must live until it returns although its route is gone meanwhile.
    void a_route_removed_while_its_handler_runs_still_answers() {
        mqtt_router_t router;
        auto kept = std::make_shared<QString>(QStringLiteral("still here"));
        const std::weak_ptr<QString> watch = kept;
        const auto handler = [&router, kept](const QString&, const QVariant&, const QStringList&,
                                             const headers_t&) {
            const std::unique_ptr<QThread> other(
                QThread::create([&router] { router.route_remove(QStringLiteral("a")); }));
            other->start();
            other->wait();
            return QJsonValue(*kept);
        };
        QVERIFY(router.route(QStringLiteral("a"), handler, PRIORITY_ROUTE::NORMAL));
        QCOMPARE(ask(router, QStringLiteral("a")), QStringLiteral("still here"));
        QVERIFY(!router.process(QStringLiteral("a"), {}, {}).isValid());
        QCOMPARE(watch.use_count(), 2L);  // this function's and its handler's own copy
    }

    void routes_may_come_and_go_while_topics_are_processed() {
        mqtt_router_t router;
        router.no_route(answer("none"));
        std::atomic_bool done = false;
        const std::unique_ptr<QThread> other(QThread::create([&router, &done] {
            for (int i = 0; i < 2000; ++i) {
                router.route(QStringLiteral("a/(.*)"), answer("route"), PRIORITY_ROUTE::NORMAL);
                router.route_remove(QStringLiteral("a/(.*)"));
            }
            done = true;
        }));
        other->start();
        int odd = 0;
        while (!done) {
            const QString said = ask(router, QStringLiteral("a/b"));
            odd += said != QLatin1String("route") && said != QLatin1String("none");
        }
        QVERIFY(other->wait());
        QCOMPARE(odd, 0);
    }
};

QTEST_GUILESS_MAIN(tst_mqtt_router_t)
#include "tst_mqtt_router_t.moc"

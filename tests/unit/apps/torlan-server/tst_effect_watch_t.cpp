#include "effect_watch_t.h"

#include <sys/socket.h>

#include <QJsonDocument>
#include <QLocalSocket>
#include <QTest>

#include "fakes/memory_database_t.h"

using torlan::effect_watch_t;

/// With an endpoint that has no broker: the rest needs real programs.
class tst_effect_watch_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        memory = std::make_unique<fakes::memory_database_t>();
        endpoint =
            std::make_unique<comunication::mqtt_endpoint_t>(comunication::endpoint_settings_t());
        watch = std::make_unique<effect_watch_t>();
    }
    void cleanup() {
        watch.reset();
        endpoint.reset();
        memory.reset();
    }

    void starting_server_says_so() { QCOMPARE(answer(30), no("the server is still starting.")); }

    void reason_is_told_when_the_time_is_over() {
        follow([](const auto&) { return QStringLiteral("it rains."); });
        QCOMPARE(answer(30), no("it rains."));
    }

    void mark_is_the_one_that_was_asked_for() {
        QString seen;
        follow([&seen](const database::store::change_mark_t& _mark) {
            seen = QString::number(_mark.sequence);
            return QStringLiteral("no.");
        });
        QCOMPARE(answer(0), no("no."));
        QCOMPARE(seen, "42");
    }

    // What is lost with a connection is tried again.
    void without_the_broker_nothing_is_effective() {
        int looks = 0;
        follow([&looks](const auto&) {
            ++looks;
            return QString();
        });
        const QJsonObject told = answer(300);
        QCOMPARE(told.value("effective"), QJsonValue(false));
        QVERIFY(looks > 2);
    }

    void large_change_is_waited_for() {
        follow([](const auto&) { return QString(); });
        Q_EMIT memory->get()->getPersistent()->getNotifier()->onPersistentChangeDatabase({});
        QCOMPARE(answer(50), no("the server still takes over a large change."));
    }

    void question_without_a_mark_is_refused() {
        ask({});
        QCOMPARE(read().value("error").toString(), "The question does not say which change.");
    }

    void asker_who_goes_is_forgotten() {
        follow([](const auto&) { return QStringLiteral("no."); });
        ask(question(60'000));
        QPointer<control::asker_t> asker = watch->findChild<control::asker_t*>();
        tool.reset();
        QTRY_VERIFY(!asker);
        QTRY_VERIFY(!watch->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly)->isActive());
    }

 private:
    static QJsonObject question(int _within_ms) {
        return {{"mark", database::store::change_mark_t{{1, 2}, 42}.to_json()},
                {"within_ms", _within_ms}};
    }
    static QJsonObject no(const char* _reason) {
        return {{"effective", false}, {"reason", _reason}, {"version", 1}};
    }
    void follow(effect_watch_t::lag_t _lag) {
        watch->follow(std::move(_lag), memory->get(), endpoint.get());
    }
    void ask(const QJsonObject& _question) {
        int ends[2] = {};
        QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
        tool = std::make_unique<QLocalSocket>();
        tool->setSocketDescriptor(ends[0]);
        watch->take(new control::asker_t(ends[1], watch.get()), _question);
    }
    QJsonObject read() {
        return QTest::qWaitFor([this]() { return tool->canReadLine(); })
                   ? QJsonDocument::fromJson(tool->readLine()).object()
                   : QJsonObject();
    }
    QJsonObject answer(int _within_ms) {
        ask(question(_within_ms));
        return read();
    }

    std::unique_ptr<fakes::memory_database_t> memory;
    std::unique_ptr<comunication::mqtt_endpoint_t> endpoint;
    std::unique_ptr<effect_watch_t> watch;
    std::unique_ptr<QLocalSocket> tool;
};

QTEST_GUILESS_MAIN(tst_effect_watch_t)
#include "tst_effect_watch_t.moc"

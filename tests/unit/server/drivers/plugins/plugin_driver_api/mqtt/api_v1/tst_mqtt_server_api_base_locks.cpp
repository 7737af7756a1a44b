// mqtt_server_api_base_t: routes change on the endpoint's thread, requests come on the plugin's.
#include <QTest>
#include <memory>

#include "kit/waiting_call_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/mqtt/support/recording_handler_t.h"

class tst_mqtt_server_api_base_locks : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void routes_wait_for_the_request_under_way() {
        recording_handler_t handler(nullptr, nullptr);
        std::unique_ptr<kit::waiting_call_t> other;
        bool waited = false;
        handler.router.no_route([&](const QString&, const QVariant&, const QStringList&,
                                    const QMap<QString, QVariant>&) -> QJsonValue {
            other = std::make_unique<kit::waiting_call_t>([&handler] { handler.init_route(true); });
            waited = other->waits();
            return {};
        });
        handler.handlerMessage(QStringLiteral("alice"), QStringLiteral("t"), {});
        other->finish();
        QVERIFY(waited);
        QCOMPARE(handler.notes, (QStringList{"fallback 1", "routes 1"}));
    }

    void a_request_waits_until_all_routes_are_there() {
        recording_handler_t handler(nullptr, nullptr);
        std::unique_ptr<kit::waiting_call_t> other;
        int answered = 0;
        handler.router.no_route([&answered](const QString&, const QVariant&, const QStringList&,
                                            const QMap<QString, QVariant>&) -> QJsonValue {
            ++answered;
            return {};
        });
        QList<bool> waited;
        handler.heard = [&] {
            if (other == nullptr) {
                other = std::make_unique<kit::waiting_call_t>([&handler] {
                    handler.handlerMessage(QStringLiteral("alice"), QStringLiteral("t"), {});
                });
            }
            waited.append(other->waits());
        };
        handler.init_route(true);
        other->finish();
        QCOMPARE(handler.notes, (QStringList{"fallback 1", "routes 1"}));
        QCOMPARE(waited, (QList<bool>{true, true}));
        QCOMPARE(answered, 1);
    }

    void an_answer_is_published_without_the_lock() {
        recording_handler_t handler(nullptr, nullptr);
        handler.router.no_route([](const QString&, const QVariant&, const QStringList&,
                                   const QMap<QString, QVariant>&) -> QJsonValue {
            return QJsonObject{{QStringLiteral("a"), 1}};
        });
        int published = 0;
        connect(&handler, &recording_handler_t::publish_message, this, [&] {
            ++published;
            // Deadlocks if the lock is still held.
            handler.init_route(false);
        });
        handler.handlerMessage(QStringLiteral("alice"), QStringLiteral("t"), {});
        QCOMPARE(published, 1);
    }
};

QTEST_GUILESS_MAIN(tst_mqtt_server_api_base_locks)
#include "tst_mqtt_server_api_base_locks.moc"

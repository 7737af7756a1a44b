#include "hidden_states_t.h"

#include <QTest>

#include "comunication/api_topics.h"
#include "fakes/endpoint_thread_t.h"
#include "fakes/memory_database_t.h"
#include "kit/furnish.h"

using database::live::shown_state_t;
using torlan::hidden_states_t;

namespace {

QString topic(const QString& _user, const QString& _element) {
    return comunication::api_topics::element_state(comunication::api_topics::version_1, _user,
                                                   _element);
}

}  // namespace

class tst_hidden_states_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        hidden.reset();
        endpoint = std::make_unique<fakes::endpoint_thread_t>();
        memory = std::make_unique<fakes::memory_database_t>();
        kit::furnish(*memory);
        hidden = std::make_unique<hidden_states_t>(memory->get(), endpoint->get());
        for (const char* user : {"alice", "bob"}) {
            for (const char* element : {"e-lamp", "e-night", "e-therm"}) {
                (*endpoint)->retain(topic(user, element), "state");
            }
        }
    }
    void cleanup() { hidden.reset(); }

    void what_may_be_read_no_longer_is_deleted_and_nothing_else() {
        memory->grant("u-bob", "e-lamp", 0);
        hidden->take({{"bob", "e-lamp"}});
        QTRY_COMPARE(deleted(), QStringList(topic("bob", "e-lamp")));
        QCOMPARE((*endpoint)->retained().size(), 5);
    }

    void it_is_deleted_as_it_was_retained() {
        hidden->take({{"gone", "e-lamp"}});
        QTRY_COMPARE((*endpoint)->deleted().size(), 1);
        const auto call = (*endpoint)->deleted().constFirst();
        QVERIFY(call.retain);
        QCOMPARE(call.qos, comunication::utility::qos_t::exactly_once);
        QCOMPARE(call.thread, endpoint->where());
    }

    void what_is_granted_again_by_then_stays() {
        memory->grant("u-bob", "e-lamp", 0);
        memory->grant("u-alice", "e-lamp", 0);
        hidden->take({{"bob", "e-lamp"}, {"alice", "e-lamp"}});
        memory->grant("u-bob", "e-lamp", 1);
        QTRY_COMPARE(deleted(), QStringList(topic("alice", "e-lamp")));
    }

    void a_grant_to_write_keeps_no_state() {
        memory->grant("u-bob", "e-lamp", 2);
        hidden->take({{"bob", "e-lamp"}});
        QTRY_COMPARE(deleted(), QStringList(topic("bob", "e-lamp")));
    }

    void who_or_what_is_gone_leaves_nothing_behind() {
        memory->remove_user("u-bob");
        memory->remove_element("e-night");
        hidden->take({{"bob", "e-lamp"}, {"alice", "e-night"}});
        QTRY_COMPARE(deleted(), QStringList({topic("alice", "e-night"), topic("bob", "e-lamp")}));
    }

    void a_name_that_another_user_has_now_is_that_user_s() {
        // Bob's name went to somebody who may read less.
        memory->remove_user("u-bob");
        memory->add_user("u-new", "bob");
        memory->grant("u-new", "e-night", 1);
        hidden->take({{"bob", "e-lamp"}, {"bob", "e-night"}});
        QTRY_COMPARE(deleted(), QStringList(topic("bob", "e-lamp")));
    }

    void it_comes_behind_what_the_driver_publishes_meanwhile() {
        memory->grant("u-bob", "e-lamp", 0);
        hidden->take({{"bob", "e-lamp"}});
        // A driver's road from a notifier to the broker: its slot, its relay, the endpoint.
        QMetaObject::invokeMethod(
            this,
            [this] {
                QMetaObject::invokeMethod(
                    this, [this] { publish(topic("bob", "e-lamp")); }, Qt::QueuedConnection);
            },
            Qt::QueuedConnection);
        QTRY_COMPARE(deleted().size(), 1);
        QCOMPARE((*endpoint)->published().size(), 1);
        QVERIFY(!(*endpoint)->retained().contains(topic("bob", "e-lamp")));
    }

    void what_comes_while_it_waits_is_deleted_once() {
        memory->grant("u-bob", "e-lamp", 0);
        hidden->take({{"bob", "e-lamp"}});
        hidden->take({{"bob", "e-lamp"}, {"alice", "gone"}});
        QTRY_COMPARE(deleted(), QStringList({topic("alice", "gone"), topic("bob", "e-lamp")}));
        endpoint->settle();
        QCOMPARE(deleted().size(), 2);
    }

    void nothing_hidden_deletes_nothing() {
        hidden->take({});
        endpoint->settle();
        QCOMPARE(deleted(), QStringList());
    }

    void ended_while_it_waits_it_deletes_nothing() {
        hidden->take({{"gone", "e-lamp"}});
        hidden.reset();
        endpoint->settle();
        QCOMPARE(deleted(), QStringList());
    }

 private:
    QStringList deleted() const {
        QStringList topics;
        for (const auto& call : (*endpoint)->deleted()) {
            topics += call.topic;
        }
        return topics;
    }
    void publish(const QString& _topic) {
        QMetaObject::invokeMethod(
            endpoint->get(),
            [to = endpoint->get(), _topic] {
                to->publish(_topic, "late", comunication::utility::qos_t::exactly_once, true,
                            false);
            },
            Qt::QueuedConnection);
    }

    std::unique_ptr<fakes::endpoint_thread_t> endpoint;
    std::unique_ptr<fakes::memory_database_t> memory;
    std::unique_ptr<hidden_states_t> hidden;
};

QTEST_GUILESS_MAIN(tst_hidden_states_t)
#include "tst_hidden_states_t.moc"

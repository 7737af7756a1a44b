#include "endpoint/refusal_queue_t.h"

#include <QTest>

using namespace comunication;

class tst_refusal_queue_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void they_go_in_order() {
        refusal_queue_t queue;
        for (const char* each : {"a1", "b1", "a2"}) {
            QVERIFY(push(queue, each));
        }
        QCOMPARE(queue.size(), std::size_t(3));
        for (const char* each : {"a1", "b1", "a2"}) {
            QCOMPARE(queue.pop().topic, QByteArray(each));
        }
        QVERIFY(queue.is_empty());
    }

    void who_floods_takes_nobody_elses_room() {
        refusal_queue_t queue;
        for (int i = 0; i < refusal_queue_t::most_of_user; ++i) {
            QVERIFY(push(queue, "a"));
        }
        QVERIFY(!push(queue, "a"));
        QVERIFY(push(queue, "b"));
        queue.pop();
        QVERIFY(push(queue, "a"));
        QVERIFY(!push(queue, "a"));
    }

    void clear_makes_room() {
        refusal_queue_t queue;
        while (push(queue, "a")) {
        }
        queue.clear();
        QVERIFY(queue.is_empty());
        QVERIFY(push(queue, "a"));
    }

 private:
    /// The user is the first letter; the topic is @p _name.
    static bool push(refusal_queue_t& _queue, const char* _name) {
        outgoing_t message;
        message.topic = _name;
        return _queue.push(QString(QChar::fromLatin1(_name[0])), message);
    }
};

QTEST_GUILESS_MAIN(tst_refusal_queue_t)
#include "tst_refusal_queue_t.moc"

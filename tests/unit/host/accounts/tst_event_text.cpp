#include "accounts/event_text.h"

#include <QTest>

using accounts::broker_event_t;

class tst_event_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void each_kind_has_its_sentence_data();
    void each_kind_has_its_sentence();
    void what_clients_have_chosen_stays_on_the_line();
};

void tst_event_text::each_kind_has_its_sentence_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("refusal");
    const QString where = R"((client "phone", from "127.0.0.1", "x"))";
    QTest::newRow("signed-in") << "MQTT: \"alice\" has signed in " + where << false;
    QTest::newRow("departed") << "MQTT: \"alice\" has left " + where << false;
    QTest::newRow("failed") << "MQTT: Somebody failed to sign in as \"alice\" " + where << true;
    QTest::newRow("unchecked")
        << "MQTT: Too many passwords wait, one for \"alice\" was not compared " + where << true;
    QTest::newRow("refused") << "MQTT: \"alice\" was not let in " + where << true;
    QTest::newRow("write-refused") << "MQTT: \"alice\" may not write " + where << true;
    QTest::newRow("subscribe-refused") << "MQTT: \"alice\" may not read " + where << true;
    QTest::newRow("flooding") << "MQTT: \"alice\" publishes too much, what is above is dropped " +
                                     where
                              << true;
    QTest::newRow("new-word") << "MQTT: Something happened at the door to \"alice\" " + where
                              << true;
}

void tst_event_text::each_kind_has_its_sentence() {
    const broker_event_t event{
        QTest::currentDataTag(), 1, 0, 0, "alice", "phone", "127.0.0.1", "x"};
    QTEST(accounts::event_text(event), "text");
    QTEST(accounts::is_refusal(event), "refusal");
}

void tst_event_text::what_clients_have_chosen_stays_on_the_line() {
    const broker_event_t event{"failed", 3, 0, 0, "a\nb %1 %2", {}, "::1", {}};
    QCOMPARE(accounts::event_text(event),
             QString("MQTT: Somebody failed to sign in as \"a?b %1 %2\" (client \"\", from "
                     "\"::1\", 3 times)"));
}

QTEST_GUILESS_MAIN(tst_event_text)
#include "tst_event_text.moc"

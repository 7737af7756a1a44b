#include "ets/name_words.h"

#include <QTest>

using ets::hint_t;

Q_DECLARE_METATYPE(ets::hint_t)

class tst_name_words : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void say_what_an_address_is_for_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<hint_t>("hint");
        QTest::addColumn<bool>("is_said");
        const auto row = [](const char* _name, hint_t _hint, bool _is_said) {
            QTest::newRow(_name) << QString::fromUtf8(_name) << _hint << _is_said;
        };
        row("Mill lamp status", hint_t::status, true);
        row("Mill lamp - STATUS", hint_t::status, true);
        row("Mühle Lampe Rückmeldung", hint_t::status, true);
        row("Mill lamp RM", hint_t::status, true);
        row("Farm lamp", hint_t::status, false);
        row("Statue lamp", hint_t::status, false);
        row("Mühle Solltemperatur", hint_t::setpoint, true);
        row("Mill set point", hint_t::setpoint, true);
        row("Mill sunset", hint_t::setpoint, false);
        row("Lamellenwinkel Mühle", hint_t::slat, true);
        row("Steckdose Mühle", hint_t::socket, true);
        row("", hint_t::status, false);
    }
    void say_what_an_address_is_for() {
        QFETCH(QString, name);
        QFETCH(hint_t, hint);
        QTEST(ets::says(name, hint), "is_said");
    }

    void pairs_have_one_base_data() {
        QTest::addColumn<QString>("one");
        QTest::addColumn<QString>("other");
        QTest::newRow("switch and status") << "Mill ceiling switch"
                                           << "Mill ceiling status";
        QTest::newRow("one bare name") << "Mill ceiling"
                                       << "Status mill ceiling";
        QTest::newRow("marks between") << "Mill_ceiling_on/off"
                                       << "Mill ceiling (state)";
        QTest::newRow("German") << "Mühle Decke schalten"
                                << "Mühle Decke Rückmeldung";
        QTest::newRow("temperatures") << "Mill set point temperature"
                                      << "Mill temperature";
        QTest::newRow("blind") << "Mill west up/down"
                               << "Mill west slat position";
    }
    void pairs_have_one_base() {
        QFETCH(QString, one);
        QFETCH(QString, other);
        QVERIFY(!ets::base_name(one).isEmpty());
        QCOMPARE(ets::base_name(one), ets::base_name(other));
    }

    void others_have_another() {
        QVERIFY(ets::base_name("Mill ceiling 1") != ets::base_name("Mill ceiling 2"));
        QCOMPARE(ets::base_name("Schalten"), QString());
    }

    void scenes_have_numbers_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("number");
        QTest::newRow("number") << "Mill scene 3" << 3;
        QTest::newRow("in brackets") << "Szene (64) Mühle" << 64;
        QTest::newRow("none") << "Mill scene" << 0;
        QTest::newRow("another number") << "2 scenes" << 0;
        QTest::newRow("too high") << "Scene 65" << 0;
        QTest::newRow("0") << "Scene 0" << 0;
    }
    void scenes_have_numbers() {
        QFETCH(QString, name);
        QTEST(ets::scene_number(name), "number");
    }
};

QTEST_GUILESS_MAIN(tst_name_words)
#include "tst_name_words.moc"

#include <QTest>

#include "knx/group_address_t.h"

using knx::address_style_t;
using knx::group_address_t;

class tst_group_address_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void text_becomes_the_number_on_the_bus_data();
    void text_becomes_the_number_on_the_bus();
    void what_is_no_address_is_refused_data();
    void what_is_no_address_is_refused();
    void addresses_survive_their_texts();
};

void tst_group_address_t::text_becomes_the_number_on_the_bus_data() {
    QTest::addColumn<int>("raw");
    QTest::addColumn<address_style_t>("style");
    const auto row = [](const char* _text, int _raw, address_style_t _style) {
        QTest::newRow(_text) << _raw << _style;
    };
    row("1/1/1", 0x0901, address_style_t::three_levels);
    row("0/0/1", 1, address_style_t::three_levels);
    row("31/7/255", 65535, address_style_t::three_levels);
    row("01/002/3", 0x0a03, address_style_t::three_levels);
    row("1/257", 0x0901, address_style_t::two_levels);
    row("31/2047", 65535, address_style_t::two_levels);
    row("1", 1, address_style_t::free);
    row("65535", 65535, address_style_t::free);
}

void tst_group_address_t::text_becomes_the_number_on_the_bus() {
    QFETCH(int, raw);
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    const auto address = group_address_t::from_text(text);
    QVERIFY(address);
    QCOMPARE(int(address->raw()), raw);
    QTEST(group_address_t::style_of(text), "style");
}

void tst_group_address_t::what_is_no_address_is_refused_data() {
    QTest::addColumn<QString>("text");
    for (const char* text :
         {"",       "/",       "1/",         "/1",         "1/2/",  "1//3",    "1/2/3/4",
          "0",      "0/0",     "0/0/0",      "32/0/1",     "1/8/1", "1/0/256", "32/1",
          "1/2048", "65536",   "-1",         "+1",         "1.2.3", " 1/2/3",  "1/2/3 ",
          "a/b/c",  "0x1/1/1", "1/1/000001", "99999999999"}) {
        QTest::newRow(text) << QString::fromLatin1(text);
    }
    QTest::newRow("other digits") << QStringLiteral("\u0661/1/1");
}

void tst_group_address_t::what_is_no_address_is_refused() {
    QFETCH(QString, text);
    QVERIFY(!group_address_t::from_text(text));
}

void tst_group_address_t::addresses_survive_their_texts() {
    for (int raw = 1; raw <= 65535; raw += 7) {
        const group_address_t address{quint16(raw)};
        for (const address_style_t style :
             {address_style_t::free, address_style_t::two_levels, address_style_t::three_levels}) {
            const QString text = address.text(style);
            QCOMPARE(group_address_t::from_text(text), std::optional(address));
            QCOMPARE(group_address_t::style_of(text), style);
        }
    }
}

QTEST_GUILESS_MAIN(tst_group_address_t)
#include "tst_group_address_t.moc"

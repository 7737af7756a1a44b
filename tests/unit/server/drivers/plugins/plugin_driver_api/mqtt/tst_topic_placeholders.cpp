#include "drivers/plugins/plugin_driver_api/mqtt/topic_placeholders.h"

#include <QTest>

#include "drivers/plugins/plugin_driver_api/mqtt/topic_scheme.h"

using values_t = QHash<QString, QString>;
namespace topics = interfaces::topics;

class tst_topic_placeholders : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void replacement_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<values_t>("values");
        QTest::addColumn<QString>("expected");
        const values_t two{{topics::sender, QStringLiteral("phone")},
                           {topics::destination, QStringLiteral("server")}};
        const auto row = [](const char* name, const char* text, const values_t& values,
                            const char* expected) {
            QTest::newRow(name) << QString::fromLatin1(text) << values
                                << QString::fromLatin1(expected);
        };
        row("each token", "local/@sender/@destination", two, "local/phone/server");
        row("every occurrence", "@sender/@sender", two, "phone/phone");
        row("inside a level", "x@senderx", two, "xphonex");
        row("a token without a value stays", "@sender/@clientid", two, "phone/@clientid");
        row("case-sensitive", "@Sender/@SENDER", two, "@Sender/@SENDER");
        row("no values", "local/@sender", {}, "local/@sender");
        row("empty template", "", two, "");
        row("empty value", "a/@sender/b", {{topics::sender, QString()}}, "a//b");
        row("a value that holds a token is not replaced again", "@destination/@sender",
            {{topics::destination, QStringLiteral("@sender")},
             {topics::sender, QStringLiteral("phone")}},
            "@sender/phone");
        row("nor in the other order", "@sender/@destination",
            {{topics::destination, QStringLiteral("@sender")},
             {topics::sender, QStringLiteral("@destination")}},
            "@destination/@sender");
        row("a value that completes a token is not replaced", "@sen@clientid",
            {{topics::clientid, QStringLiteral("der")}, {topics::sender, QStringLiteral("p")}},
            "@sender");
        row("a value is taken literally", "@sender", {{topics::sender, QStringLiteral("%1\\1$&")}},
            "%1\\1$&");
    }
    void replacement() {
        QFETCH(QString, text);
        QFETCH(values_t, values);
        QFETCH(QString, expected);
        QCOMPARE(topics::replace_placeholders(text, values), expected);
    }

    void a_whole_template_becomes_a_topic() {
        const values_t values{{topics::installation_id, QStringLiteral("0001")},
                              {topics::sender, QStringLiteral("phone")},
                              {topics::destination, QStringLiteral("server")}};
        QCOMPARE(topics::replace_placeholders(topics::client_ready, values),
                 QStringLiteral("local/0001/phone/server/command/client/ready"));
    }
};

QTEST_GUILESS_MAIN(tst_topic_placeholders)
#include "tst_topic_placeholders.moc"

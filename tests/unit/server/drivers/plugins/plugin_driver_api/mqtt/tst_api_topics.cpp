#include "drivers/plugins/plugin_driver_api/mqtt/api_topics.h"

#include <QRegularExpression>
#include <QTest>

namespace topics = interfaces::api_topics;

namespace {

QString matches_of(const QString& _topic) {
    const QString root = QStringLiteral("local/api/v1");
    const std::pair<const char*, QString> patterns[] = {
        {"get list", topics::list_pattern(root, topics::get_path)},
        {"get one", topics::element_pattern(root, topics::get_path)},
        {"set list", topics::list_pattern(root, topics::set_path)},
        {"set one", topics::element_pattern(root, topics::set_path)},
        {"status", topics::retained_pattern(root)}};
    for (const auto& [name, pattern] : patterns) {
        const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
        const QRegularExpressionMatch match = expression.match(_topic);
        if (match.hasMatch()) {
            return QString::fromLatin1(name) + QLatin1Char(':') +
                   match.capturedTexts().mid(1).join(QLatin1Char(','));
        }
    }
    return QString();
}

}  // namespace

class tst_api_topics : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void words() {
        QCOMPARE(topics::identifier, QStringLiteral("[0-9a-zA-Z._-]+"));
        QCOMPARE(topics::get_path, QStringLiteral("request/get/elements/objects_list"));
        QCOMPARE(topics::set_path, QStringLiteral("request/set/elements/objects_list"));
        QCOMPARE(topics::status_path, QStringLiteral("status/elements/objects_list"));
    }

    void patterns_and_topics_data() {
        QTest::addColumn<QString>("made");
        QTest::addColumn<QString>("expected");
        const QString root = topics::root(QStringLiteral("v1"));
        const QString id = QStringLiteral("([0-9a-zA-Z._-]+)");
        const auto row = [](const char* name, const QString& made, const QString& expected) {
            QTest::newRow(name) << made << expected;
        };
        row("root", root, QStringLiteral("local/api/v1"));
        row("root of v2", topics::root(QStringLiteral("v2")), QStringLiteral("local/api/v2"));
        row("list pattern", topics::list_pattern(root, topics::get_path),
            QStringLiteral("^local/api/v1/%1/%1/request/get/elements/objects_list$").arg(id));
        row("element pattern", topics::element_pattern(root, topics::set_path),
            QStringLiteral("^local/api/v1/%1/%1/request/set/elements/objects_list/%1$").arg(id));
        row("retained pattern", topics::retained_pattern(root),
            QStringLiteral("^local/api/v1/%1/status/elements/objects_list/%1$").arg(id));
        row("user status", topics::user_status(root, QStringLiteral("bob")),
            QStringLiteral("local/api/v1/bob/status/elements/objects_list"));
        row("element status",
            topics::element_status(root, QStringLiteral("bob"), QStringLiteral("42")),
            QStringLiteral("local/api/v1/bob/status/elements/objects_list/42"));
        row("element status without user",
            topics::shared_element_status(root, QStringLiteral("42")),
            QStringLiteral("local/api/v1/status/elements/objects_list/42"));
        row("response", topics::response(root, QStringLiteral("bob"), QStringLiteral("status/x/y")),
            QStringLiteral("local/api/v1/bob/status/x/y"));
        row("response with an empty path", topics::response(root, QStringLiteral("bob"), {}),
            QStringLiteral("local/api/v1/bob/"));
    }
    void patterns_and_topics() {
        QFETCH(QString, made);
        QFETCH(QString, expected);
        QCOMPARE(made, expected);
    }

    void a_value_that_holds_a_marker_is_not_filled_again() {
        const QString root = QStringLiteral("r");
        QCOMPARE(topics::element_status(root, QStringLiteral("%3"), QStringLiteral("%1")),
                 QStringLiteral("r/%3/status/elements/objects_list/%1"));
        QCOMPARE(topics::user_status(QStringLiteral("%2"), QStringLiteral("bob")),
                 QStringLiteral("%2/bob/status/elements/objects_list"));
        QCOMPARE(topics::shared_element_status(QStringLiteral("%2"), QStringLiteral("x")),
                 QStringLiteral("%2/status/elements/objects_list/x"));
        QCOMPARE(
            topics::response(QStringLiteral("%2%3"), QStringLiteral("%3"), QStringLiteral("p")),
            QStringLiteral("%2%3/%3/p"));
        QCOMPARE(topics::root(QStringLiteral("%1")), QStringLiteral("local/api/%1"));
    }

    void routing_data() {
        QTest::addColumn<QString>("topic");
        QTest::addColumn<QString>("expected");
        const QString get = QStringLiteral("/request/get/elements/objects_list");
        const QString set = QStringLiteral("/request/set/elements/objects_list");
        const QString status = QStringLiteral("/status/elements/objects_list");
        const QString a = QStringLiteral("local/api/v1/a");
        const QString ab = a + QStringLiteral("/b");
        const auto row = [](const char* name, const QString& topic, const char* expected = "") {
            QTest::newRow(name) << topic << QString::fromLatin1(expected);
        };
        row("read all", ab + get, "get list:a,b");
        row("read one", ab + get + QStringLiteral("/x"), "get one:a,b,x");
        row("write many", ab + set, "set list:a,b");
        row("write one", ab + set + QStringLiteral("/x"), "set one:a,b,x");
        row("status", a + status + QStringLiteral("/x"), "status:a,x");
        row("all allowed characters", QStringLiteral("local/api/v1/a.Z_0-9/B-b") + get,
            "get list:a.Z_0-9,B-b");
        row("trailing slash", ab + get + QLatin1Char('/'));
        row("trailing slash behind an id", ab + get + QStringLiteral("/x/"));
        row("one more level", ab + get + QStringLiteral("/x/y"));
        row("one level less", a + get);
        row("empty level", QStringLiteral("local/api/v1/a/") + get);
        row("leading slash", QLatin1Char('/') + ab + get);
        row("trailing line feed", ab + get + QLatin1Char('\n'));
        row("text before", QStringLiteral("x") + ab + get);
        row("other version", QStringLiteral("local/api/v2/a/b") + get);
        row("other operation", ab + QStringLiteral("/request/delete/elements/objects_list"));
        row("other case", ab + QStringLiteral("/request/GET/elements/objects_list"));
        row("status of the user", a + status);
        row("status without user", QStringLiteral("local/api/v1/status/elements/objects_list/x"));
        for (const char* level : {"+", "#", " ", "a b", "@", "~", "a%2", "a:b", "\xC3\xA9", "$"}) {
            const QString word = QString::fromUtf8(level);
            row(qPrintable(QStringLiteral("user ") + word),
                QStringLiteral("local/api/v1/%1/b").arg(word) + get);
            row(qPrintable(QStringLiteral("second level ") + word),
                a + QLatin1Char('/') + word + get);
            row(qPrintable(QStringLiteral("id ") + word), ab + set + QLatin1Char('/') + word);
            row(qPrintable(QStringLiteral("status id ") + word),
                a + status + QLatin1Char('/') + word);
        }
    }
    void routing() {
        QFETCH(QString, topic);
        QFETCH(QString, expected);
        QCOMPARE(matches_of(topic), expected);
    }
};

QTEST_GUILESS_MAIN(tst_api_topics)
#include "tst_api_topics.moc"

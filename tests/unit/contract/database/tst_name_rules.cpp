#include "database/name_rules.h"

#include <QTest>

#include "kit/name_samples.h"

using namespace database;

class tst_name_rules : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void identifiers_data() { fill(sample::identifiers()); }
    void identifiers() {
        QFETCH(QString, text);
        QTEST(identifier_error(text), "error");
    }

    void topics_data() {
        fill(sample::topics());
        QTest::newRow("empty") << QString() << topic_error(QStringLiteral("/"));
    }
    void topics() {
        QFETCH(QString, text);
        QTEST(topic_error(text), "error");
    }

    void plain_text_has_no_control_characters_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("any script") << "Küche 台所 💡 a/b" << true;
        QTest::newRow("empty") << "" << true;
        QTest::newRow("line feed") << "a\nb" << false;
        QTest::newRow("NUL") << QString(QChar(u'\0')) << false;
        QTest::newRow("delete") << "\u007f" << false;
        QTest::newRow("next line") << QString(QChar(0x85)) << false;
        QTest::newRow("half a character") << QString(QChar(0xd800)) << false;
    }
    void plain_text_has_no_control_characters() {
        QFETCH(QString, text);
        QTEST(plain_text_error(text).isEmpty(), "accepted");
        QTEST(cleaned_text(text) == text, "accepted");
        QCOMPARE(plain_text_error(cleaned_text(text)), QString());
    }

    void values_may_hold_anything_but_nul_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("line feed") << "a\nb" << true;
        QTest::newRow("empty") << "" << true;
        QTest::newRow("NUL") << QString(QChar(u'\0')) << false;
        QTest::newRow("half a character") << QString(QChar(0xdc00)) << false;
    }
    void values_may_hold_anything_but_nul() {
        QFETCH(QString, text);
        QTEST(value_error(text).isEmpty(), "accepted");
        QTEST(cleaned_value(text) == text, "accepted");
        QCOMPARE(value_error(cleaned_value(text)), QString());
    }

    void what_is_cleaned_stays_readable() {
        QCOMPARE(cleaned_text(QStringLiteral("Kitchen\nlamp")), "Kitchen lamp");
        QCOMPARE(cleaned_value(QStringLiteral("2") + QChar(u'\0') + QStringLiteral("1\n")), "21\n");
    }

    void quoted_text_is_short_and_on_one_line() {
        QCOMPARE(quoted("a"), "\"a\"");
        QCOMPARE(quoted("a\nb"), "\"a?b\"");
        QCOMPARE(quoted(QString(1 << 20, 'x')), "\"" + QString(80, 'x') + "…\"");
    }

 private:
    static void fill(const QList<sample::name_t>& _names) {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        for (const sample::name_t& name : _names) {
            QTest::newRow(name.title) << name.text << name.error;
        }
    }
};

QTEST_GUILESS_MAIN(tst_name_rules)
#include "tst_name_rules.moc"

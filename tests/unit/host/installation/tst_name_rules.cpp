#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

#include "installation/name_rules.h"

using namespace database::installation;

namespace {

/// Const, so that "[]" reads on through it.
const QJsonObject schema() {
    QFile file(":/installation/installation.schema.json");
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

/// What an editor makes of a text that the schema speaks about.
bool schema_accepts(const QJsonValue& _schema, const QString& _text) {
    const QRegularExpression pattern(_schema["pattern"].toString());
    return pattern.match(_text).hasMatch() && _text.size() <= _schema["maxLength"].toInt();
}

const QString alphabet_error = "must be 1 to 64 of the characters 0-9 a-z A-Z . _ -";
const QString topic_alphabet_error =
    "must be levels of 1 to 64 of the characters 0-9 a-z A-Z . _ - joined by \"/\", at most 256 "
    "characters";
const QString reserved_error = "must not contain \"request\"";

}  // namespace

class tst_name_rules : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void identifiers_data();
    void identifiers();
    void topics_data();
    void topics();
    void plain_text_has_no_control_characters_data();
    void plain_text_has_no_control_characters();
    void quoted_text_is_short_and_on_one_line();
};

void tst_name_rules::identifiers_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    QTest::newRow("every class") << "aZ09._-"
                                 << "";
    QTest::newRow("longest") << QString(64, 'x') << "";
    QTest::newRow("Request is another word") << "Request"
                                             << "";
    QTest::newRow("too long") << QString(65, 'x') << alphabet_error;
    QTest::newRow("empty") << "" << alphabet_error;
    QTest::newRow("blank") << "a b" << alphabet_error;
    QTest::newRow("two levels") << "a/b" << alphabet_error;
    QTest::newRow("wildcard") << "+" << alphabet_error;
    QTest::newRow("umlaut") << "ä" << alphabet_error;
    QTest::newRow("digit of another script") << "\u0663" << alphabet_error;
    QTest::newRow("host's own name") << "@host" << alphabet_error;
    QTest::newRow("trailing line feed") << "a\n" << alphabet_error;
    QTest::newRow("reserved") << "my-requests" << reserved_error;
}

void tst_name_rules::identifiers() {
    QFETCH(QString, text);
    QFETCH(QString, error);
    QCOMPARE(identifier_error(text), error);
    if (!text.endsWith('\n')) {  // the "$" of Qt's expressions matches before it
        QCOMPARE(schema_accepts(schema()["definitions"]["identifier"], text), error.isEmpty());
    }
}

void tst_name_rules::topics_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    QTest::newRow("one level") << "home"
                               << "";
    QTest::newRow("three levels") << "a/b/c"
                                  << "";
    QTest::newRow("api below") << "home/api"
                               << "";
    QTest::newRow("api is a part") << "apiary"
                                   << "";
    QTest::newRow("api") << "api"
                         << "must not begin with the level \"api\"";
    QTest::newRow("api first") << "api/x"
                               << "must not begin with the level \"api\"";
    QTest::newRow("reserved") << "a/request" << reserved_error;
    QTest::newRow("empty") << "" << topic_alphabet_error;
    QTest::newRow("leading slash") << "/a" << topic_alphabet_error;
    QTest::newRow("trailing slash") << "a/" << topic_alphabet_error;
    QTest::newRow("empty level") << "a//b" << topic_alphabet_error;
    QTest::newRow("wildcard") << "a/#" << topic_alphabet_error;
    QTest::newRow("long level") << "a/" + QString(65, 'x') << topic_alphabet_error;
    QTest::newRow("longest") << QString("abc/").repeated(63) + "wxyz"
                             << "";
    QTest::newRow("too long") << QString("abc/").repeated(63) + "vwxyz" << topic_alphabet_error;
}

void tst_name_rules::topics() {
    QFETCH(QString, text);
    QFETCH(QString, error);
    QCOMPARE(topic_error(text), error);
    QCOMPARE(schema_accepts(schema()["properties"]["topic"], text), error.isEmpty());
}

void tst_name_rules::plain_text_has_no_control_characters_data() {
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

void tst_name_rules::plain_text_has_no_control_characters() {
    QFETCH(QString, text);
    QTEST(plain_text_error(text).isEmpty(), "accepted");
}

void tst_name_rules::quoted_text_is_short_and_on_one_line() {
    QCOMPARE(quoted("a"), "\"a\"");
    QCOMPARE(quoted("a\nb"), "\"a?b\"");
    QCOMPARE(quoted(QString(1 << 20, 'x')), "\"" + QString(80, 'x') + "…\"");
}

QTEST_GUILESS_MAIN(tst_name_rules)
#include "tst_name_rules.moc"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

#include "kit/name_samples.h"

/// What an editor makes of installation.schema.json: about names it says what the rules say.
class tst_installation_schema : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void identifiers_data() { fill(sample::identifiers()); }
    void identifiers() {
        QFETCH(QString, text);
        QFETCH(QString, error);
        const QJsonValue rule = schema()["definitions"]["identifier"];
        QCOMPARE(accepts(rule, text), error.isEmpty());
    }

    void topics_data() {
        fill(sample::topics());
        QTest::newRow("none") << QString() << QString();
    }
    void topics() {
        QFETCH(QString, text);
        QFETCH(QString, error);
        QCOMPARE(accepts(schema()["properties"]["topic"], text), error.isEmpty());
    }

 private:
    static void fill(const QList<sample::name_t>& _names) {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        for (const sample::name_t& name : _names) {
            if (!name.text.endsWith(u'\n')) {  // the "$" of Qt's expressions matches before it
                QTest::newRow(name.title) << name.text << name.error;
            }
        }
    }

    /// Const, so that "[]" reads on through it.
    static const QJsonObject schema() {
        QFile file(QStringLiteral(SCHEMA));
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject();
    }

    static bool accepts(const QJsonValue& _rule, const QString& _text) {
        const QRegularExpression pattern(_rule["pattern"].toString());
        return pattern.match(_text).hasMatch() && _text.size() <= _rule["maxLength"].toInt();
    }
};

QTEST_GUILESS_MAIN(tst_installation_schema)
#include "tst_installation_schema.moc"

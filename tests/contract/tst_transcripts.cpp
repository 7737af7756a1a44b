// Whole conversations over MQTT, as clients have them. A change of an answer fails with a
// difference; it breaks clients.
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTest>

#include "contract/support/transcript_t.h"

class tst_transcripts : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void conversation_data() {
        QTest::addColumn<QString>("path");
        const QDir folder(QStringLiteral(TRANSCRIPTS));
        const QStringList files = folder.entryList({QStringLiteral("*.json")}, QDir::Files);
        QVERIFY(files.size() >= 10);
        for (const QString& file : files) {
            QTest::newRow(qPrintable(file)) << folder.filePath(file);
        }
    }
    void conversation() {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QJsonParseError error;
        QJsonObject document = QJsonDocument::fromJson(file.readAll(), &error).object();
        QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString()));
        file.close();

        support::transcript_t transcript(document);
        QVERIFY(transcript.is_ready());
        QJsonArray steps = document.value(QLatin1String("steps")).toArray();
        QVERIFY(!steps.isEmpty());
        QStringList differences;
        for (qsizetype i = 0; i < steps.size(); ++i) {
            QJsonObject step = steps[i].toObject();
            const QJsonArray actual = transcript.play(step);
            const QString difference =
                support::difference(step.value(QLatin1String("expect")).toArray(), actual);
            if (!difference.isEmpty()) {
                differences.append(
                    QStringLiteral("step %1, %2:\n%3")
                        .arg(i + 1)
                        .arg(step.value(QLatin1String("about")).toString(), difference));
                step.insert(QStringLiteral("expect"), actual);
                steps[i] = step;
            }
        }
        if (!differences.isEmpty() && qEnvironmentVariableIsSet("TORLAN_REWRITE_TRANSCRIPTS")) {
            document.insert(QStringLiteral("steps"), steps);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QJsonDocument(document).toJson());
        }
        QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));
    }
};

QTEST_GUILESS_MAIN(tst_transcripts)
#include "tst_transcripts.moc"

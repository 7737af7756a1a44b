#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include "first_settings.h"

class tst_first_settings : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void they_name_the_folders_whatever_these_are_called() {
        const QString data = "/the \"home\" & \\1\n";
        const QJsonObject settings =
            QJsonDocument::fromJson(torlan::first_settings(data, "/drivers")).object();
        const QJsonObject paths = settings["static"]["torlan"]["paths"].toObject();
        QCOMPARE(paths["client_communication"].toString(), data + "/client");
        QCOMPARE(paths["logs"].toString(), data + "/logs");
        QCOMPARE(paths["plugins"].toString(), QString("/drivers"));
        QVERIFY(paths["cacerts"].isArray());
    }

    void the_client_file_has_a_place() {
        const QJsonObject settings =
            QJsonDocument::fromJson(torlan::first_settings("/a", "/b")).object();
        QCOMPARE(settings["installation"]["installation_id"], QJsonValue(""));
        QCOMPARE(settings["static"]["torlan"]["comunication"]["global"]["installation_id"],
                 QJsonValue(""));
    }
};

QTEST_GUILESS_MAIN(tst_first_settings)
#include "tst_first_settings.moc"

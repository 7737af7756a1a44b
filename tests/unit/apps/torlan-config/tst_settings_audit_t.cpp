#include "settings_audit_t.h"

#include <sys/stat.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "config_server_t.h"
#include "unit/apps/torlan-config/support/raw_http.h"

using namespace torlan;

class tst_settings_audit_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_change_is_told_without_its_value();
    void a_refused_change_is_told();
    void reading_is_not_told();
    void strangers_are_told();

 private:
    QByteArray text() const {
        QFile file(folder.filePath("settings-audit.log"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder;
};

void tst_settings_audit_t::a_change_is_told_without_its_value() {
    QFile::remove(folder.filePath("settings-audit.log"));
    {
        config_server_t server({});
        QCOMPARE(server.start(folder.filePath("s.json"), 0).error, QString());
        QVERIFY(raw_http::exchange(server.port(),
                                   raw_http::request("PUT /static/cloud_api_token", "\"s3cret\""))
                    .contains("200"));
    }
    QVERIFY2(text().contains(R"("operation":"setting")"), text());
    QVERIFY2(text().contains(R"("result":"200","detail":"/static/cloud_api_token")"), text());
    QVERIFY(!text().contains("s3cret"));
    struct stat status = {};
    QCOMPARE(::stat(qPrintable(folder.filePath("settings-audit.log")), &status), 0);
    QCOMPARE(status.st_mode & 07777, mode_t(0600));
}

void tst_settings_audit_t::a_refused_change_is_told() {
    {
        config_server_t server({});
        QCOMPARE(server.start(folder.filePath("s.json"), 0).error, QString());
        raw_http::exchange(server.port(), raw_http::request("PUT /a", "no JSON"));
    }
    QVERIFY2(text().contains(R"("result":"400","detail":"/a")"), text());
}

void tst_settings_audit_t::reading_is_not_told() {
    QFile::remove(folder.filePath("settings-audit.log"));
    {
        config_server_t server({});
        QCOMPARE(server.start(folder.filePath("s.json"), 0).error, QString());
        raw_http::exchange(server.port(), raw_http::request("GET /"));
    }
    QCOMPARE(text(), QByteArray());
}

void tst_settings_audit_t::strangers_are_told() {
    {
        settings_audit_t audit;
        audit.note_stranger(1);  // before there is a file: nothing happens
        QCOMPARE(audit.open(folder.filePath("s.json")).error, QString());
        audit.note_stranger(65534);
        audit.note_stranger(std::nullopt);
        for (int i = 0; i < 100; ++i) {
            audit.note_stranger(65534);
        }
    }
    QVERIFY2(text().contains(R"("by":"system user 65534","operation":"setting","result":"403")"),
             text());
    QVERIFY2(text().contains(R"("count":100)"), text());
    QVERIFY(text().contains("unknown system user"));
}

QTEST_GUILESS_MAIN(tst_settings_audit_t)
#include "tst_settings_audit_t.moc"

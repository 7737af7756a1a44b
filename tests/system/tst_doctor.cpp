#include <signal.h>

#include <QJsonDocument>
#include <QtTest>

#include "kit/password_of.h"
#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// torlanctl doctor.
class tst_doctor : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void running_server_is_well();
    void rights_of_a_user_are_tried();
    void json_is_a_line_for_each_finding_and_the_verdict();
    void user_that_is_not_let_in_is_a_problem();
    void file_that_others_can_change_is_a_problem();
    void settings_that_are_none_are_a_problem();
    void stopped_server_is_no_problem();
    void database_that_is_damaged_is_a_problem();
    void folder_that_is_not_there_is_a_problem();

 private:
    /// All lines about this, which "doctor" must have written.
    QByteArrayList about(const char* _what) const {
        QByteArrayList found;
        for (const QByteArray& line : host.control_output().split('\n')) {
            if (line.mid(12, 10).trimmed() == _what) {
                found.append(line.left(12).trimmed() + ": " + line.mid(22));
            }
        }
        return found;
    }
    QByteArray verdict() const { return host.control_output().trimmed().split('\n').last(); }

    host_process_t host;
};

void tst_doctor::initTestCase() {
    QVERIFY2(host.import(small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
}

void tst_doctor::cleanupTestCase() {
    if (host.is_running()) {
        QCOMPARE(host.stop(), 0);
    }
}

void tst_doctor::running_server_is_well() {
    QVERIFY2(host.control({"doctor"}) == 0, host.control_output().constData());
    QCOMPARE(about("server"), QByteArrayList{"ok: is ready, its broker runs"});
    QCOMPARE(about("retained"),
             QByteArrayList{"ok: the broker holds the 4 states that 2 of 2 users may read"});
    QCOMPARE(about("rights").mid(0, 2),
             (QByteArrayList{"ok: the broker turns away who has no name",
                             "ok: the broker turns away an unknown user"}));
    QVERIFY(about("rights").last().startsWith("not checked: "));
    QCOMPARE(about("ports").size(), 2);
    QVERIFY(about("ports")[0].contains("(mosquitto)"));
    QVERIFY(about("database")[0].startsWith("ok: every page was read, its layout is "));
    QVERIFY(about("versions")[0].startsWith("ok: this program is "));
    QVERIFY(about("versions")[1].startsWith("ok: mosquitto is 2.0."));
    QCOMPARE(about("disk").size(), 1);
    QCOMPARE(about("clock").size(), 1);
    QVERIFY(verdict().endsWith("1 not checked."));
}

void tst_doctor::rights_of_a_user_are_tried() {
    QCOMPARE(host.control({"doctor", "--user", "bob"}, password_of("bob").toUtf8()), 0);
    QCOMPARE(about("rights").size(), 6);
    for (const QByteArray& line : about("rights")) {
        QVERIFY2(line.startsWith("ok: "), line.constData());
    }
}

void tst_doctor::json_is_a_line_for_each_finding_and_the_verdict() {
    QCOMPARE(host.control({"doctor", "--json"}), 0);
    for (const QByteArray& line : host.control_output().trimmed().split('\n')) {
        QVERIFY2(QJsonDocument::fromJson(line).isObject(), line.constData());
    }
    QCOMPARE(QJsonDocument::fromJson(verdict()).object()["problems"].toInt(-1), 0);
}

void tst_doctor::user_that_is_not_let_in_is_a_problem() {
    QCOMPARE(host.control({"doctor", "--user", "bob"}, "wrong\n"), 1);
    QVERIFY(about("rights").last().startsWith("problem: The broker at "));
    QVERIFY(verdict().startsWith("1 problem"));
    QVERIFY(!host.control_output().contains("wrong"));
}

void tst_doctor::file_that_others_can_change_is_a_problem() {
    const auto all = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::WriteOther |
                     QFile::ExeOther;
    const auto before = QFile::permissions(host.data());
    QVERIFY(QFile::setPermissions(host.data(), all));
    QCOMPARE(host.control({"doctor"}), 1);
    QVERIFY(about("files")[0].startsWith("problem: "));
    QVERIFY(QFile::setPermissions(host.data(), before));
}

void tst_doctor::settings_that_are_none_are_a_problem() {
    QFile file(host.settings_file());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray former = file.readAll();
    file.close();
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write("{") == 1);
    file.close();
    QCOMPARE(host.control({"doctor"}), 1);
    QVERIFY(about("settings")[0].startsWith("problem: settings.json is no JSON object"));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(former) > 0);
}

void tst_doctor::stopped_server_is_no_problem() {
    QCOMPARE(host.stop(), 0);
    QVERIFY2(host.control({"doctor"}) == 0, host.control_output().constData());
    QCOMPARE(about("server"), QByteArrayList{"not checked: ports, rights, retained states and "
                                             "versions. No server runs on " +
                                             host.data().toUtf8() + "."});
    QVERIFY(about("database")[0].startsWith("ok: "));
}

void tst_doctor::database_that_is_damaged_is_a_problem() {
    QFile file(host.data() + "/installation.db");
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(0) && file.write("no database") > 0);
    file.close();
    QCOMPARE(host.control({"doctor"}), 1);
    QVERIFY(about("database")[0].startsWith("problem: "));
}

void tst_doctor::folder_that_is_not_there_is_a_problem() {
    QCOMPARE(host.control({"doctor", "--data", host.data() + "/nowhere"}), 1);
    QVERIFY(about("files")[0].startsWith("problem: there is no folder "));
}

QTEST_GUILESS_MAIN(tst_doctor)
#include "tst_doctor.moc"

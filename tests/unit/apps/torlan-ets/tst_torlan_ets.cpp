#include <QTest>

#include "accounts/broker_hash.h"
#include "ets/project_password.h"
#include "kit/ets_house.h"

namespace {

struct call_t {
    int status = -1;  ///< -1: it did not start, crashed or hung
    QByteArray output;
    QString error;  ///< standard error without its line end

    QJsonObject house() const { return QJsonDocument::fromJson(output).object(); }
};

const QByteArray one_lamp =
    kit::ets_addresses(kit::ets_address(2305, "Lamp", kit::ets_type("DPST-1-1")));

}  // namespace

/// The real program.
class tst_torlan_ets : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() { folder = std::make_unique<QTemporaryDir>(); }

    void prints_an_installation() {
        const call_t call = run({write("p", kit::ets_project(one_lamp))});
        QCOMPARE(call.error, QString());
        QCOMPARE(call.status, 0);
        QCOMPARE(call.house()["topic"].toString(), "installation/P-0AF1");
        QCOMPARE(call.house()["elements"].toObject().keys(), QStringList("e-1-1-1"));
        QVERIFY(!call.house().contains("users"));
    }

    // To be looked over by a person when it changes: TORLAN_WRITE_GOLDEN=1 writes it anew.
    void whole_house_is_as_it_was() {
        const call_t call = run({write("p", kit::ets_house())});
        QCOMPARE(call.status, 0);
        QCOMPARE(call.error,
                 "torlan-ets: 7/0/1 \"Clock\" is left out: it is of type 10.001, which no element "
                 "has a use for.\n"
                 "torlan-ets: 7/0/2 \"Nothing said\" is left out: it has no data point type.");
        QFile golden(QStringLiteral(GOLDEN_HOUSE));
        if (qEnvironmentVariableIsSet("TORLAN_WRITE_GOLDEN")) {
            QVERIFY(golden.open(QIODevice::WriteOnly));
            golden.write(call.output);
            golden.close();
        }
        QVERIFY(golden.open(QIODevice::ReadOnly));
        const QList<QByteArray> expected = golden.readAll().split('\n');
        const QList<QByteArray> printed = call.output.split('\n');
        for (qsizetype i = 0; i < expected.size(); ++i) {
            QCOMPARE(printed.value(i), expected[i]);
        }
        QCOMPARE(printed.size(), expected.size());
    }

    void prints_group_addresses() {
        const QString project =
            write("p", kit::ets_project(
                           kit::ets_addresses(kit::ets_address(2306, "B") +
                                              kit::ets_address(2305, "A", kit::ets_type("DPT-1"))),
                           "TwoLevel"));
        // Options may stand anywhere.
        const call_t call = run({project, "--groups"});
        QCOMPARE(call.error, QString());
        QCOMPARE(QJsonDocument::fromJson(call.output).toJson(QJsonDocument::Compact),
                 R"([{"address":"1/257","description":"","dpt":"1","name":"A"},)"
                 R"({"address":"1/258","description":"","dpt":null,"name":"B"}])");
    }

    void what_was_not_understood_is_told_beside_it() {
        const call_t call =
            run({write("p", kit::ets_project(kit::ets_addresses(kit::ets_address(2305, "Odd"))))});
        QCOMPARE(call.error, "torlan-ets: 1/1/1 \"Odd\" is left out: it has no data point type.");
        QCOMPARE(call.status, 0);
    }

    void a_user_comes_with_everything_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<bool>("is_locked");
        QTest::newRow("from standard input") << QStringList() << QByteArray("hush\n") << false;
        QTest::newRow("from a file")
            << QStringList{"--user-password-file", "hush"} << QByteArray() << false;
        QTest::newRow("from the file that the project has no use for")
            << QStringList{"--password-file", "hush"} << QByteArray() << false;
        QTest::newRow("from both files")
            << QStringList{"--password-file", "geheim", "--user-password-file", "hush"}
            << QByteArray() << true;
        QTest::newRow("from a file and standard input")
            << QStringList{"--password-file", "geheim"} << QByteArray("hush") << true;
    }
    void a_user_comes_with_everything() {
        QFETCH(QStringList, options);
        QFETCH(QByteArray, input);
        QFETCH(bool, is_locked);
        const QString project =
            write("p", is_locked ? kit::ets_locked(one_lamp, kit::zip_lock_t::aes,
                                                   ets::derived_zip_password("geheim"))
                                 : kit::ets_project(one_lamp));
        write("hush", "hush\r\nanother line\n");
        write("geheim", "geheim");
        options.replaceInStrings(QRegularExpression("^(hush|geheim)$"), folder->path() + "/\\1");
        const call_t call = run(options + QStringList{"--user", "alice", project}, input);
        QCOMPARE(call.status, 0);
        const QJsonObject house = call.house();
        const QJsonObject user = house["users"]["u-alice"].toObject();
        QCOMPARE(user["username"].toString(), "alice");
        QVERIFY(accounts::verify_password("hush", user["password_hash"].toString()));
        QCOMPARE(house["permissions"]["u-alice"]["e-1-1-1"].toString(), "readwrite");
    }

    void output_is_its_owner_s_and_new() {
        const QString project = write("p", kit::ets_project(one_lamp));
        const QString path = folder->filePath("home.json");
        const call_t call = run({"--output", path, project});
        QCOMPARE(call.error, QString());
        QCOMPARE(call.output, QByteArray());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), run({project}).output);
        QCOMPARE(file.permissions() &
                     (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther),
                 QFile::Permissions());
        const call_t again = run({"--output", path, project});
        QCOMPARE(again.status, 1);
        QVERIFY(again.error.startsWith("torlan-ets: " + path + ": cannot be written: "));
        QCOMPARE(QDir(folder->path()).entryList(QDir::Files | QDir::Hidden),
                 (QStringList{"home.json", "p"}));
    }

    void refused_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("error");
        const QByteArray project = kit::ets_project(one_lamp);
        const QByteArray locked = kit::ets_locked(one_lamp, kit::zip_lock_t::aes, "x");
        QTest::newRow("cut off") << project.chopped(30) << QStringList()
                                 << "P: The zip is damaged or cut off";
        QTest::newRow("no password")
            << locked << QStringList() << "P: The project is protected: its password is missing.";
        QTest::newRow("wrong password") << locked << QStringList{"--password-file", "P.pw"}
                                        << "P: The password of the project is wrong.";
        QTest::newRow("no password file")
            << locked << QStringList{"--password-file", "P.none"} << "P.none: cannot be read: ";
        QTest::newRow("empty password file") << locked << QStringList{"--password-file", "P.empty"}
                                             << "P.empty: The password must not be empty.";
        QTest::newRow("no name for a user")
            << project << QStringList{"--user", "a b"}
            << "The user name \"a b\" must be 1 to 64 of the characters 0-9 a-z A-Z . _ -.";
        QTest::newRow("no password for a user")
            << project << QStringList{"--user", "alice"} << "The password must not be empty.";
    }
    void refused() {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, options);
        QFETCH(QString, error);
        const QString path = write("p", bytes);
        write("p.pw", "wrong\n");
        write("p.empty", "");
        const QString output = folder->filePath("out");
        const call_t call = run(options.replaceInStrings(QRegularExpression("^P"), path) +
                                QStringList{"--output", output, path});
        QCOMPARE(call.status, 1);
        QVERIFY2(
            call.error.startsWith("torlan-ets: " + error.replace(QRegularExpression("^P"), path)),
            qPrintable(call.error));
        QCOMPARE(call.error.count('\n'), 0);
        QVERIFY(!QFile::exists(output));
    }

    void a_missing_project_or_a_folder_is_one_sentence() {
        for (const QString& path : {folder->filePath("none"), folder->path()}) {
            const call_t call = run({path});
            QCOMPARE(call.status, 1);
            QVERIFY2(call.error.startsWith("torlan-ets: " + path + ": cannot be read: "),
                     qPrintable(call.error));
        }
    }

    void a_wrong_call_is_status_2_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("nothing") << QStringList();
        QTest::newRow("two projects") << QStringList{"a", "b"};
        QTest::newRow("unknown option") << QStringList{"--frob", "a"};
        QTest::newRow("no value") << QStringList{"a", "--user"};
        QTest::newRow("an empty value") << QStringList{"--user", "", "a"};
        QTest::newRow("a user of a list") << QStringList{"--groups", "--user", "alice", "a"};
        QTest::newRow("a password of nobody") << QStringList{"--user-password-file", "x", "a"};
    }
    void a_wrong_call_is_status_2() {
        QFETCH(QStringList, arguments);
        const call_t call = run(arguments);
        QCOMPARE(call.status, 2);
        QVERIFY2(call.error.endsWith(" See torlan-ets --help."), qPrintable(call.error));
    }

 private:
    QString write(const QString& _name, const QByteArray& _bytes) const {
        QFile file(folder->filePath(_name));
        return file.open(QIODevice::WriteOnly) && file.write(_bytes) == _bytes.size()
                   ? file.fileName()
                   : QString();
    }

    static call_t run(const QStringList& _arguments, const QByteArray& _input = {}) {
        QProcess process;
        process.start(QStringLiteral(TORLAN_ETS), _arguments);
        process.write(_input);
        process.closeWriteChannel();
        if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit) {
            return {};
        }
        return {process.exitCode(), process.readAllStandardOutput(),
                QString::fromUtf8(process.readAllStandardError()).trimmed()};
    }

    std::unique_ptr<QTemporaryDir> folder;
};

QTEST_GUILESS_MAIN(tst_torlan_ets)
#include "tst_torlan_ets.moc"

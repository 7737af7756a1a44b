#include <QTest>

#include "kit/former_layout.h"
#include "unit/apps/torlanctl/torlanctl_t.h"

class tst_import_export : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void export_of_an_imported_export_is_the_same();
    void export_holds_no_passwords_and_its_import_keeps_them();
    void passwords_go_into_a_new_file_only();
    void what_an_odd_database_exports_can_be_imported();
    void a_database_of_the_former_layout_is_migrated_and_told_once();
    void import_replaces_what_was_there();
    void import_names_what_elements_share();
    void import_of_the_same_file_changes_nothing();
    void import_keeps_users_when_it_is_asked_to();
    void refused_import_writes_nothing();
    void validation_tells_every_problem();
    void first_import_that_is_refused_makes_no_database();
    void damaged_database_is_replaced_when_asked_for();
    void import_reads_from_a_pipe();
    void import_of_a_file_without_an_end_is_refused();
    void database_is_readable_by_its_owner_only();
    void missing_folder_or_installation_is_one_sentence();
    void export_into_a_closed_output_fails_and_harms_nothing_data();
    void export_into_a_closed_output_fails_and_harms_nothing();
};

void tst_import_export::export_of_an_imported_export_is_the_same() {
    const torlanctl_t first;
    QCOMPARE(first({"import", SAMPLE}).status, 0);
    const call_t written = first({"export"});
    QCOMPARE(written.status, 0);
    const torlanctl_t second;
    const QString file = second.data() + "/export.json";
    QCOMPARE(first({"export", "--with-passwords", file}).error, QString());
    QCOMPARE(QFile::permissions(file) & (QFile::ReadGroup | QFile::ReadOther), 0);
    QCOMPARE(second({"import", file}).status, 0);
    QCOMPARE(second({"export"}).output, written.output);
    QVERIFY(second.stored() == first.stored());
}

void tst_import_export::export_holds_no_passwords_and_its_import_keeps_them() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    const auto before = torlanctl.stored();
    const call_t written = torlanctl({"export"});
    QVERIFY(!written.output.contains("password"));
    const QString file = torlanctl.write("home.json", written.output.toUtf8());
    QCOMPARE(torlanctl({"import", file}).error, QString());
    QVERIFY(torlanctl.stored() == before);

    // Another user of that name is not the same user.
    QByteArray renamed = written.output.toUtf8();
    renamed.replace("\"u-bob\"", "\"u-rob\"");
    const call_t imported = torlanctl({"import", torlanctl.write("home.json", renamed)});
    QCOMPARE(imported.status, 0);
    QCOMPARE(imported.error, "torlanctl: The user \"bob\" has no password yet and cannot sign in.");
    QCOMPARE(torlanctl.stored().users["u-rob"].password_hash, QString());
    QCOMPARE(torlanctl({"user", "passwd", "bob"}, "new\n").error, QString());
    QVERIFY(!torlanctl.stored().users["u-rob"].password_hash.isEmpty());
}

void tst_import_export::passwords_go_into_a_new_file_only() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    const QString there = torlanctl.write("there", "precious");
    const QString link = torlanctl.data() + "/link";
    QVERIFY(QFile::link(torlanctl.data() + "/target", link));
    for (const QString& path : {there, link, torlanctl.data() + "/none/file"}) {
        const call_t refused = torlanctl({"export", "--with-passwords", path});
        QCOMPARE(refused.status, 1);
        QVERIFY2(refused.error.contains(path + ": cannot be written"), qPrintable(refused.error));
    }
    QVERIFY(!QFile::exists(torlanctl.data() + "/target"));
    QFile file(there);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("precious"));
}

void tst_import_export::what_an_odd_database_exports_can_be_imported() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    database::store::connection_t shell;
    using access_t = database::store::connection_t::access_t;
    QVERIFY(shell.open(torlanctl.data() + "/installation.db", access_t::read_write, 1000).is_ok());
    for (const char* sql :
         {"PRAGMA ignore_check_constraints = ON",
          "UPDATE elements SET name = 'Lamp' || char(7) || char(0) || '!' WHERE id = 'e-lamp'",
          "INSERT INTO elements (id, type) VALUES (hex(zeroblob(41)), 1), (x'61', 1), ('a b', 1)",
          "INSERT INTO items (id, value) VALUES ('i/1', '1'), ('i-2', '4' || char(0) || '2')",
          "INSERT INTO functions VALUES ('e-lamp', 'up' || char(10), 'i/1'), ('e-lamp', '', NULL)",
          "INSERT INTO elements (id, type) VALUES ('e-8', 8), ('e-17', 17)",
          "INSERT INTO users VALUES ('u-eve', 'eve', 'clear text'), ('u-x', 'x+', 'hash')",
          "INSERT INTO permissions VALUES ('u-eve', 'e-lamp', 1), ('u-alice', 'e-8', 9)",
          "UPDATE meta SET value = 'home/#'"}) {
        const base::result_t result = shell.run(QString::fromLatin1(sql));
        QVERIFY2(result.is_ok(), qPrintable(result.error));
    }
    const call_t written = torlanctl({"export"});
    QCOMPARE(written.status, 0);
    QCOMPARE(written.error.count(" is left out: "), 10);
    QCOMPARE(written.error.count(" is cleaned: "), 3);

    const torlanctl_t second;
    QCOMPARE(second({"import", second.write("home.json", written.output.toUtf8())}).status, 0);
    QCOMPARE(second({"export"}).output, written.output);
    const auto stored = second.stored();
    QCOMPARE(stored.elements.keys(), QStringList({"e-17", "e-8", "e-lamp", "e-night", "e-therm"}));
    QCOMPARE(stored.elements["e-lamp"].name, "Lamp  !");
    QCOMPARE(stored.items["i-2"].value, "42");
    QCOMPARE(stored.users.keys(), QStringList({"u-alice", "u-bob"}));
}

void tst_import_export::a_database_of_the_former_layout_is_migrated_and_told_once() {
    const torlanctl_t torlanctl;
    const QString path = torlanctl.data() + "/installation.db";
    QCOMPARE(sample::former_layout_t(path).error, QString());
    const call_t first = torlanctl({"set", "i-lamp", "0"});
    QCOMPARE(first.status, 0);
    QCOMPARE(first.error, "torlanctl: The database " + path +
                              " had layout 1 and has layout 4 now; what it was is kept in " +
                              torlanctl.data() + "/installation.layout-1.db.");
    QCOMPARE(torlanctl({"export"}).error, QString());
    QVERIFY(torlanctl.stored() == sample::installation());
}

void tst_import_export::import_replaces_what_was_there() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    const QString path = torlanctl.write("new.json", R"({"topic": "new"})");
    QCOMPARE(torlanctl({"import", path}).error, QString());
    database::installation::installation_t expected;
    expected.topic = "new";
    QVERIFY(torlanctl.stored() == expected);
}

void tst_import_export::import_names_what_elements_share() {
    const torlanctl_t torlanctl;
    const call_t call = torlanctl({"import", SAMPLE});
    QCOMPARE(call.status, 0);
    QCOMPARE(call.error.count('\n') + 1, 4);
    QVERIFY2(call.error.contains("torlanctl: Item i-bedroom-window is shared by elements "
                                 "e-bedroom-thermostat and e-bedroom-window: a right on one "
                                 "reaches it."),
             qPrintable(call.error));
}

void tst_import_export::import_of_the_same_file_changes_nothing() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl({"import", SAMPLE}).status, 0);
    const auto before = torlanctl.stored();
    database::store::connection_t shell;
    using access_t = database::store::connection_t::access_t;
    QVERIFY(shell.open(torlanctl.data() + "/installation.db", access_t::read_write, 1000).is_ok());
    QVERIFY(shell.run("DELETE FROM changes").is_ok());
    // Its passwords are in clear text: who has it already is not signed out.
    QCOMPARE(torlanctl({"import", SAMPLE}).status, 0);
    QVERIFY(torlanctl.stored() == before);
    QCOMPARE(shell.value("SELECT count(*) FROM changes").value.toInt(), 0);
}

void tst_import_export::import_keeps_users_when_it_is_asked_to() {
    const torlanctl_t torlanctl;
    QJsonObject home = kit::small_home();
    const auto write = [&] { return torlanctl.write("h", QJsonDocument(home).toJson()); };
    // Into an empty folder it is like any other import.
    QCOMPARE(torlanctl({"import", "--keep-users", write()}).error, QString());
    QCOMPARE(torlanctl({"grant", "alice", "e-lamp", "deny"}).error, QString());
    const auto before = torlanctl.stored();
    QJsonObject users = home["users"].toObject();
    users.remove("u-bob");
    home["users"] = users;
    QJsonObject permissions = home["permissions"].toObject();
    permissions.remove("u-bob");
    home["permissions"] = permissions;
    home["topic"] = "installation/0002";
    QCOMPARE(torlanctl({"import", "--keep-users", write()}).error, QString());
    QVERIFY(torlanctl.stored().users == before.users);
    QVERIFY(torlanctl.stored().permissions == before.permissions);
    QCOMPARE(torlanctl.stored().topic, "installation/0002");
}

void tst_import_export::refused_import_writes_nothing() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    const auto before = torlanctl.stored();
    const QString path =
        torlanctl.write("bad.json", R"({"topic": "new", "items": {"i-new": {"value": 1}}})");
    const call_t call = torlanctl({"import", path});
    QCOMPARE(call.status, 1);
    QCOMPARE(call.error, "torlanctl: " + path + ": items/i-new/value: must be text");
    QVERIFY(torlanctl.stored() == before);
}

void tst_import_export::validation_tells_every_problem() {
    const torlanctl_t torlanctl;
    const QString odd = torlanctl.write("odd.json", R"({"topic": "api/x", "items": {"a b": {}}})");
    const call_t whole = torlanctl_t::run({"validate", odd});
    QCOMPARE(whole.status, 1);
    QCOMPARE(whole.output.count('\n'), 2);
    QVERIFY(whole.output.contains("topic: must not begin with the level \"api\"\n"));
    QVERIFY(whole.output.contains("items/a b: the identifier "));
    QCOMPARE(whole.error, "torlanctl: " + odd + " cannot be imported.");
    QCOMPARE(torlanctl_t::run({"validate", odd, "--json"}).output.count("{\"problem\":"), 2);

    const QString wrong = torlanctl.write("wrong.json", R"({"topic": "x", "nothing": 1})");
    QCOMPARE(torlanctl_t::run({"validate", wrong}).error,
             "torlanctl: " + wrong + ": there is no such key as \"nothing\"");
    const QString home = torlanctl.write("home.json", kit::small_home_text());
    QCOMPARE(torlanctl_t::run({"validate", home}).status, 0);
}

void tst_import_export::first_import_that_is_refused_makes_no_database() {
    const torlanctl_t torlanctl;
    const QString path = torlanctl.write("bad.json", "{");
    QCOMPARE(torlanctl({"import", path}).status, 1);
    QVERIFY(!QFile::exists(torlanctl.data() + "/installation.db"));
}

void tst_import_export::damaged_database_is_replaced_when_asked_for() {
    const torlanctl_t torlanctl;
    const QByteArray rubbish(5000, 'x');
    const QString path = torlanctl.write("installation.db", rubbish);
    const call_t refused = torlanctl({"import", SAMPLE});
    QCOMPARE(refused.status, 1);
    QVERIFY2(refused.error.contains("torlanctl import --replace"), qPrintable(refused.error));
    QCOMPARE(torlanctl({"import", "--replace", torlanctl.write("no.json", "{")}).status, 1);
    const call_t replaced = torlanctl({"import", "--replace", SAMPLE});
    QCOMPARE(replaced.status, 0);
    QFile kept(replaced.error.section(" is kept in ", 1).section('\n', 0, 0).chopped(1));
    QVERIFY2(kept.open(QIODevice::ReadOnly), qPrintable(replaced.error));
    QCOMPARE(kept.readAll(), rubbish);
    QVERIFY(!torlanctl.stored().elements.isEmpty());
    // A sound one is imported over as ever.
    QCOMPARE(torlanctl({"import", "--replace", SAMPLE}).status, 0);
    QVERIFY(QFile::exists(path));
}

void tst_import_export::import_reads_from_a_pipe() {
    const torlanctl_t torlanctl;
    QByteArray large = R"({"topic": "home", "items": {"i": {"value": ")";
    large += QByteArray(300000, 'x') + "\"}}}";
    QCOMPARE(torlanctl({"import", "/dev/stdin"}, large).error, QString());
    QCOMPARE(torlanctl.stored().items["i"].value.size(), 300000);
}

void tst_import_export::import_of_a_file_without_an_end_is_refused() {
    const torlanctl_t torlanctl;
    const call_t call = torlanctl({"import", "/dev/zero"});
    QCOMPARE(call.error, "torlanctl: /dev/zero: is larger than 64 MiB");
    QCOMPARE(call.status, 1);
}

void tst_import_export::database_is_readable_by_its_owner_only() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    const auto rights = QFile::permissions(torlanctl.data() + "/installation.db");
    QVERIFY(
        !(rights & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther)));
}

void tst_import_export::missing_folder_or_installation_is_one_sentence() {
    const torlanctl_t torlanctl;
    const call_t empty = torlanctl({"export"});
    QCOMPARE(empty.status, 1);
    QCOMPARE(empty.error,
             "torlanctl: There is no installation in " + torlanctl.data() + ": import one first.");
    const QString none = torlanctl.data() + "/none";
    const QString file = torlanctl.write("new.json", R"({"topic": "new"})");
    const call_t missing = torlanctl_t::run({"--data", none, "import", file});
    QCOMPARE(missing.status, 1);
    QCOMPARE(missing.error, "torlanctl: There is no folder " + none + ".");
    QVERIFY(!QFile::exists(none));
}

void tst_import_export::export_into_a_closed_output_fails_and_harms_nothing_data() {
    QTest::addColumn<QString>("redirection");
    QTest::addColumn<QString>("error");
    QTest::newRow("closed") << ">&-"
                            << "torlanctl: Standard output: Bad file descriptor.\n1\n";
    QTest::newRow("full") << ">/dev/full"
                          << "torlanctl: Standard output: No space left on device.\n1\n";
    QTest::newRow("everything closed") << "<&- >&- 2>&-"
                                       << "1\n";
}

void tst_import_export::export_into_a_closed_output_fails_and_harms_nothing() {
    QFETCH(QString, redirection);
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    const auto before = torlanctl.stored();
    QProcess shell;
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start("sh", {"-c", "\"$0\" --data \"$1\" export " + redirection + "; echo $?", TORLANCTL,
                       torlanctl.data()});
    QVERIFY(shell.waitForFinished());
    QTEST(QString::fromUtf8(shell.readAll()), "error");
    QVERIFY(torlanctl.stored() == before);
}

QTEST_GUILESS_MAIN(tst_import_export)
#include "tst_import_export.moc"

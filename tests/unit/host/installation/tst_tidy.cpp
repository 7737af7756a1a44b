#include "installation/tidy.h"

#include <QTest>
#include <random>

#include "installation/document_reader.h"
#include "installation/document_writer.h"
#include "kit/name_samples.h"
#include "kit/sample_installation.h"

using namespace database::installation;

namespace {

/// The sample with one thing that is odd.
using change_t = void (*)(installation_t*);

const QString alphabet = QStringLiteral("must be 1 to 64 of the characters 0-9 a-z A-Z . _ -");

}  // namespace

Q_DECLARE_METATYPE(change_t)

class tst_tidy : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_sound_installation_stays_as_it_is() {
        installation_t whole = sample::installation();
        QCOMPARE(tidy_whole(&whole), QStringList());
        QVERIFY(whole == sample::installation());
    }

    void every_name_is_held_to_the_rule_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("error");
        for (const sample::name_t& name : sample::identifiers()) {
            QTest::newRow(name.title) << name.text << name.error;
        }
    }
    void every_name_is_held_to_the_rule() {
        QFETCH(QString, name);
        QFETCH(QString, error);
        installation_t part;
        part.items[name].value = "1";
        part.scenarios[name] = true;
        part.thermostats[name] = {};
        part.elements[name] = {"Lamp", 1, 0, {}, {}, {}};
        part.users[name] = {"alice", sample::password_hash(u'A')};
        part.users["u-x"] = {name, sample::password_hash(u'A')};
        part.permissions[name]["e-lamp"] = 1;
        part.permissions["u-alice"][name] = 1;
        const installation_t before = part;
        const QStringList notes = tidy_entries(&part);
        QCOMPARE(notes.size(), error.isEmpty() ? 0 : 6);
        for (const QString& note : notes) {
            QVERIFY2(note.endsWith(error), qPrintable(note));
        }
        installation_t nothing;
        nothing.permissions["u-alice"] = {};
        QVERIFY(part == (error.isEmpty() ? before : nothing));
    }

    void odd_things_are_told_with_their_place_data() {
        QTest::addColumn<change_t>("change");
        QTest::addColumn<QStringList>("notes");
        const auto row = [](const char* _name, change_t _change, const QString& _note) {
            QTest::newRow(_name) << _change
                                 << (_note.isEmpty() ? QStringList() : QStringList(_note));
        };
        row(
            "topic", [](installation_t* _w) { _w->topic = "home/#"; },
            "topic is left out: must be levels of 1 to 64 of the characters 0-9 a-z A-Z . _ - "
            "joined "
            "by \"/\", at most 256 characters");
        row(
            "no topic", [](installation_t* _w) { _w->topic.clear(); }, "");
        row(
            "item", [](installation_t* _w) { _w->items["i\n1"].value = ""; },
            "items/i?1 is left out: the identifier " + alphabet);
        row(
            "user name", [](installation_t* _w) { _w->users["u-bob"].username = "b/b"; },
            "users/u-bob is left out: the user name " + alphabet);
        row(
            "namesake", [](installation_t* _w) { _w->users["u-bob"].username = "alice"; },
            "users/u-bob is left out: \"alice\" is another user's name already");
        row(
            "hash", [](installation_t* _w) { _w->users["u-bob"].password_hash = "hash"; },
            "users/u-bob is left out: the password hash must be $7$iterations$salt$hash");
        row(
            "value",
            [](installation_t* _w) { _w->items["i-dim"].value = QString("4") + QChar(0) + "0"; },
            "items/i-dim/value is cleaned: must be text without NUL characters");
        row(
            "limits",
            [](installation_t* _w) {
                _w->items["i-dim"].limits = {true, 1, 0, {}};
            },
            "items/i-dim is not writable: min must not be above max");
        row(
            "element name", [](installation_t* _w) { _w->elements["e-lamp"].name = "a\tb"; },
            "elements/e-lamp/name is cleaned: must be text without control characters");
        row(
            "function",
            [](installation_t* _w) { _w->elements["e-lamp"].functions["x\n"] = "i-dim"; },
            "elements/e-lamp/functions/x? is cleaned: must be text without control characters");
        row(
            "function twice",
            [](installation_t* _w) {
                _w->elements["e-lamp"].functions = {{"a\n", "i-dim"}, {"a ", "i-lamp"}};
            },
            "elements/e-lamp/functions/a? is left out: must be text without control characters");
        row(
            "no function",
            [](installation_t* _w) { _w->elements["e-lamp"].functions[""] = "i-dim"; },
            "elements/e-lamp/functions/ is left out: a name must not be empty");
        row(
            "thermostat key", [](installation_t* _w) { _w->thermostats["t-living"].ids[""] = ""; },
            "thermostats/t-living/ids/ is left out: a name must not be empty");
        row(
            "bits", [](installation_t* _w) { _w->permissions["u-bob"]["e-lamp"] = -1; },
            "permissions/u-bob/e-lamp is left out: -1 is no permission");
        row(
            "more bits", [](installation_t* _w) { _w->permissions["u-bob"]["e-lamp"] = 7; },
            "permissions/u-bob/e-lamp is left out: 7 is no permission");
        row(
            "item of a function",
            [](installation_t* _w) { _w->elements["e-lamp"].functions["execute"] = "i-x"; },
            "elements/e-lamp/functions/execute is left out: there is no item \"i-x\"");
        row(
            "item of a key",
            [](installation_t* _w) { _w->thermostats["t-living"].ids["mode"] = "x"; },
            "thermostats/t-living/ids/mode is left out: there is no item \"x\"");
        row(
            "actual", [](installation_t* _w) { _w->thermostats["t-living"].id_actual = "x"; },
            "thermostats/t-living/id_actual is left out: there is no item \"x\"");
        row(
            "window",
            [](installation_t* _w) { _w->thermostats["t-living"].id_windows_contact = "x"; },
            "thermostats/t-living/id_windows_contact is left out: there is no item \"x\"");
        row(
            "scenario", [](installation_t* _w) { _w->scenarios.clear(); },
            "elements/e-night/scenario is left out: there is no scenario \"s-night\"");
        row(
            "thermostat", [](installation_t* _w) { _w->thermostats.clear(); },
            "elements/e-therm/thermostat is left out: there is no thermostat \"t-living\"");
        row(
            "nobody's grant", [](installation_t* _w) { _w->permissions["u-x"]["e-lamp"] = 1; }, "");
        row(
            "grant on nothing", [](installation_t* _w) { _w->permissions["u-bob"]["e-x"] = 1; },
            "");
    }
    void odd_things_are_told_with_their_place() {
        QFETCH(change_t, change);
        installation_t whole = sample::installation();
        change(&whole);
        QTEST(tidy_whole(&whole), "notes");
        const auto read = read_document(write_document(whole, passwords_t::hashed), "export");
        QCOMPARE(read.error, QString());
        QCOMPARE(write_document(read.value, passwords_t::hashed),
                 write_document(whole, passwords_t::hashed));
    }

    void what_is_cleaned_is_kept() {
        installation_t whole = sample::installation();
        whole.elements["e-lamp"].name = QString("a\tb\n") + QChar(0xd800);
        whole.items["i-dim"].value = QString("4") + QChar(0) + "0\n";
        whole.elements["e-lamp"].functions = {{"exe\ncute", "i-lamp"}};
        QCOMPARE(tidy_whole(&whole).size(), 3);
        QCOMPARE(whole.elements["e-lamp"].name, "a b ?");
        QCOMPARE(whole.items["i-dim"].value, "40\n");
        QCOMPARE(whole.elements["e-lamp"].functions,
                 (QMap<QString, QString>{{"exe cute", "i-lamp"}}));
    }

    void whatever_is_odd_the_rest_can_be_read_back() {
        std::mt19937 random(7);
        QStringList texts{"alice", "bob", "i-lamp", "e-lamp", "u-alice", "t-living", "s-night", ""};
        for (const sample::name_t& name : sample::identifiers()) {
            texts.append(name.text);
        }
        const auto text = [&] { return texts.at(qsizetype(random() % quint32(texts.size()))); };
        const auto number = [&] { return int(random() % 20) - 2; };
        for (int round = 0; round < 200; ++round) {
            installation_t whole;
            for (int i = 0; i < 12; ++i) {
                whole.topic = text();
                whole.items[text()].value = text();
                whole.scenarios[text()] = number() > 0;
                whole.thermostats[text()] = {{{text(), text()}}, text(), text()};
                whole.elements[text()] = {text(), number(), 0, {{text(), text()}, {text(), text()}},
                                          text(), text()};
                whole.users[text()] = {text(), number() > 0 ? sample::password_hash(u'A') : text()};
                whole.permissions[text()][text()] = number();
            }
            tidy_whole(&whole);
            const QByteArray document = write_document(whole, passwords_t::hashed);
            const auto read = read_document(document, "export");
            QCOMPARE(read.error, QString());
            QCOMPARE(write_document(read.value, passwords_t::hashed), document);
        }
    }
};

QTEST_GUILESS_MAIN(tst_tidy)
#include "tst_tidy.moc"

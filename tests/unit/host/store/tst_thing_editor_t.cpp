#include "store/thing_editor_t.h"

#include <QTemporaryDir>
#include <QTest>

#include "installation/document_reader.h"
#include "kit/small_home.h"
#include "store/sqlite_store_t.h"

using namespace database;
using namespace database::store;
using ::base::result_t;
using installation::installation_t;

class tst_thing_editor_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void added_things_are_stored_with_all_that_makes_them();
    void change_touches_what_it_is_about_only();
    void change_leaves_values_to_the_server();
    void renamed_thing_takes_its_references_along_data();
    void renamed_thing_takes_its_references_along();
    void unused_thing_goes_data();
    void unused_thing_goes();
    void refusal_changes_nothing_data();
    void refusal_changes_nothing();
    void rename_of_many_is_one_word_to_read_everything();

 private:
    installation_t stored() { return store.read().value; }
    static result_t nothing(installation_t*) { return {}; }

    std::unique_ptr<QTemporaryDir> folder;
    sqlite_store_t store;
    std::unique_ptr<thing_editor_t> editor;
};

void tst_thing_editor_t::init() {
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(store.open(folder->filePath("installation.db")).is_ok());
    QVERIFY(
        store.replace(installation::read_document(kit::small_home_text(), "small").value).is_ok());
    QVERIFY(store.connection().run("DELETE FROM changes").is_ok());
    editor = std::make_unique<thing_editor_t>(store.connection());
}

void tst_thing_editor_t::added_things_are_stored_with_all_that_makes_them() {
    installation_t expected = stored();
    const bus::bus_data_t bus{"1.001", "1/2/3", {}};
    const installation::item_t item{"7", {.writable = false, .min = 1.5, .max = 9, .step = 0.5}};
    const installation::thermostat_t thermostat{
        {{"a", "i-new"}, {"b", QString()}}, "i-new", "i-win"};
    const installation::element_t element{"Näme",  17,     -3, {{"f", "i-new"}, {"g", {}}},
                                          "s-new", "t-new"};
    QCOMPARE(editor
                 ->add(kind_t::item, "i-new",
                       [&](installation_t* _thing) {
                           _thing->items["i-new"] = item;
                           _thing->item_buses["i-new"] = bus;
                           return result_t();
                       })
                 .error,
             QString());
    QCOMPARE(editor->add(kind_t::scenario, "s-new", nothing).error, QString());
    QCOMPARE(editor
                 ->add(kind_t::thermostat, "t-new",
                       [&](installation_t* _thing) {
                           _thing->thermostats["t-new"] = thermostat;
                           return result_t();
                       })
                 .error,
             QString());
    QCOMPARE(editor
                 ->add(kind_t::element, "e-new",
                       [&](installation_t* _thing) {
                           _thing->elements["e-new"] = element;
                           return result_t();
                       })
                 .error,
             QString());
    expected.items["i-new"] = item;
    expected.item_buses["i-new"] = bus;
    expected.scenarios["s-new"] = false;
    expected.thermostats["t-new"] = thermostat;
    expected.elements["e-new"] = element;
    QVERIFY(stored() == expected);
}

void tst_thing_editor_t::change_touches_what_it_is_about_only() {
    installation_t expected = stored();
    QCOMPARE(editor
                 ->change(kind_t::element, "e-lamp",
                          [](installation_t* _thing) {
                              installation::element_t& lamp = _thing->elements["e-lamp"];
                              lamp.functions.remove("dim");
                              lamp.functions["new"] = "i-dim";
                              return result_t();
                          })
                 .error,
             QString());
    expected.elements["e-lamp"].functions = {{"execute", "i-lamp"}, {"new", "i-dim"}};
    QVERIFY(stored() == expected);
    // What stays is not written: one row out, one in.
    QCOMPARE(store.connection().value("SELECT group_concat(tab || ' ' || key) FROM changes").value,
             QVariant("elements e-lamp,elements e-lamp"));
}

void tst_thing_editor_t::change_leaves_values_to_the_server() {
    QCOMPARE(editor
                 ->change(kind_t::item, "i-lamp",
                          [](installation_t* _thing) {
                              _thing->items["i-lamp"].value = "9";
                              _thing->items["i-lamp"].limits.max = 5;
                              return result_t();
                          })
                 .error,
             QString());
    QCOMPARE(stored().items["i-lamp"].value, "0");
    QCOMPARE(stored().items["i-lamp"].limits.max, std::optional<double>(5));
}

void tst_thing_editor_t::renamed_thing_takes_its_references_along_data() {
    QTest::addColumn<kind_t>("kind");
    QTest::addColumn<QString>("id");
    QTest::newRow("item") << kind_t::item << "i-win";
    QTest::newRow("scenario") << kind_t::scenario << "s-night";
    QTest::newRow("thermostat") << kind_t::thermostat << "t-living";
    QTest::newRow("element") << kind_t::element << "e-lamp";
}

void tst_thing_editor_t::renamed_thing_takes_its_references_along() {
    QFETCH(kind_t, kind);
    QFETCH(QString, id);
    QByteArray text = kit::small_home_text();
    text.replace('"' + id.toUtf8() + '"', "\"new\"");
    QCOMPARE(editor->rename(kind, id, "new").error, QString());
    QVERIFY(stored() == installation::read_document(text, "small").value);
    QCOMPARE(editor->rename(kind, "new", id).error, QString());
}

void tst_thing_editor_t::unused_thing_goes_data() {
    QTest::addColumn<kind_t>("kind");
    QTest::newRow("item") << kind_t::item;
    QTest::newRow("scenario") << kind_t::scenario;
    QTest::newRow("thermostat") << kind_t::thermostat;
    QTest::newRow("element") << kind_t::element;
}

void tst_thing_editor_t::unused_thing_goes() {
    QFETCH(kind_t, kind);
    const installation_t before = stored();
    QCOMPARE(editor->add(kind, "new", nothing).error, QString());
    QVERIFY(!(stored() == before));
    QCOMPARE(editor->remove(kind, "new").error, QString());
    QVERIFY(stored() == before);
}

void tst_thing_editor_t::refusal_changes_nothing_data() {
    QTest::addColumn<QString>("error");
    const auto row = [](const char* _name, const char* _error) {
        QTest::newRow(_name) << QString(_error);
    };
    row("unknown item", "elements/e-lamp/functions/f: there is no item \"i-none\".");
    row("unknown thermostat", "elements/e-lamp/thermostat: there is no thermostat \"t-none\".");
    row("name of two",
        "The item's identifier \"a b\" must be 1 to 64 of the characters 0-9 a-z A-Z . _ -.");
    row("add what is there", "There is already the item i-lamp.");
    row("change what is not", "There is no scenario s-none.");
    row("rename what is not", "There is no thermostat t-none.");
    row("rename to what is there", "There is already the element e-night.");
    row("remove what is not", "There is no element e-none.");
    row("remove an item in use",
        "The item i-win is used by thermostat t-living "
        "(id_windows_contact).");
    row("remove a scenario in use", "The scenario s-night is used by element e-night.");
    row("remove a thermostat in use", "The thermostat t-living is used by element e-therm.");
    row("limits", "items/i-lamp: min must not be above max.");
    row("said by the edit", "No.");
}

void tst_thing_editor_t::refusal_changes_nothing() {
    const installation_t before = stored();
    const auto lamp = [](const auto& _edit) {
        return [_edit](installation_t* _thing) {
            _edit(_thing->elements["e-lamp"]);
            return result_t();
        };
    };
    const QHash<QString, std::function<result_t()>> calls{
        {"unknown item",
         [&]() {
             return editor->change(kind_t::element, "e-lamp",
                                   lamp([](auto& _lamp) { _lamp.functions["f"] = "i-none"; }));
         }},
        {"unknown thermostat",
         [&]() {
             return editor->change(kind_t::element, "e-lamp",
                                   lamp([](auto& _lamp) { _lamp.thermostat = "t-none"; }));
         }},
        {"name of two", [&]() { return editor->add(kind_t::item, "a b", nothing); }},
        {"add what is there", [&]() { return editor->add(kind_t::item, "i-lamp", nothing); }},
        {"change what is not",
         [&]() { return editor->change(kind_t::scenario, "s-none", nothing); }},
        {"rename what is not", [&]() { return editor->rename(kind_t::thermostat, "t-none", "t"); }},
        {"rename to what is there",
         [&]() { return editor->rename(kind_t::element, "e-lamp", "e-night"); }},
        {"remove what is not", [&]() { return editor->remove(kind_t::element, "e-none"); }},
        {"remove an item in use", [&]() { return editor->remove(kind_t::item, "i-win"); }},
        {"remove a scenario in use", [&]() { return editor->remove(kind_t::scenario, "s-night"); }},
        {"remove a thermostat in use",
         [&]() { return editor->remove(kind_t::thermostat, "t-living"); }},
        {"limits",
         [&]() {
             return editor->change(kind_t::item, "i-lamp", [](installation_t* _thing) {
                 _thing->items["i-lamp"].limits = {.min = 2, .max = 1};
                 return result_t();
             });
         }},
        {"said by the edit",
         [&]() {
             return editor->change(kind_t::item, "i-lamp", [](installation_t* _thing) {
                 _thing->items["i-lamp"].limits.max = 1;
                 return result_t::failed("No.");
             });
         }},
    };
    QTEST(calls[QTest::currentDataTag()]().error, "error");
    QVERIFY(stored() == before);
}

void tst_thing_editor_t::rename_of_many_is_one_word_to_read_everything() {
    for (int i = 0; i <= sqlite_store_t::told_singly; ++i) {
        QVERIFY(store.connection()
                    .run("INSERT INTO elements (id, type) VALUES (?, 1)",
                         {QStringLiteral("f-%1").arg(i)})
                    .is_ok());
        QVERIFY(store.connection()
                    .run("INSERT INTO functions (element, name, item) VALUES (?, 'f', 'i-lamp')",
                         {QStringLiteral("f-%1").arg(i)})
                    .is_ok());
    }
    QVERIFY(store.connection().run("DELETE FROM changes").is_ok());
    QCOMPARE(editor->rename(kind_t::item, "i-lamp", "i-2").error, QString());
    QCOMPARE(store.connection().value("SELECT group_concat(tab) FROM changes").value,
             QVariant("bulk"));
}

QTEST_GUILESS_MAIN(tst_thing_editor_t)
#include "tst_thing_editor_t.moc"

#include "ets/project_reader.h"

#include <QTest>

#include "ets/project_password.h"
#include "kit/ets_project.h"

using ets::project_t;
using ets::read_project;
using kit::ets_address;
using kit::ets_addresses;
using kit::ets_file;
using kit::ets_type;
using kit::zip_lock_t;
using kit::zip_of;

namespace {

const QString program = QStringLiteral("M-00FA_A-0001-01-ABCD");
const QByteArray hardware = "M-00FA_H-7-1_HP-0001-01-ABCD";

/// A device with objects, as later projects write it.
QByteArray device(const QByteArray& _objects, const QByteArray& _hardware = hardware,
                  const QByteArray& _id = "DI-1") {
    return "<Topology><DeviceInstance Id=\"P-0AF1-0_" + _id + "\" Hardware2ProgramRefId=\"" +
           _hardware + "\"><ComObjectInstanceRefs>" + _objects +
           "</ComObjectInstanceRefs></DeviceInstance></Topology>";
}

QByteArray program_file(const QByteArray& _objects, const QByteArray& _refs) {
    return ets_file("<ManufacturerData><ApplicationProgram><ComObjectTable>" + _objects +
                    "</ComObjectTable><ComObjectRefs>" + _refs +
                    "</ComObjectRefs></ApplicationProgram></ManufacturerData>");
}

/// One address without a type, linked to one object of that program.
QByteArray project_with(const QByteArray& _object, const QByteArray& _program,
                        const QList<kit::zip_file_t>& _more = {}) {
    auto files = kit::ets_files(device(_object) + ets_addresses(ets_address(1, "Lamp")));
    files.append({"M-00FA/" + program + ".xml", _program});
    files += _more;
    return zip_of(files);
}

project_t read(const QByteArray& _zip, const ets::reading_t& _how = {}) {
    const auto done = read_project(_zip, _how);
    if (!done.is_ok()) {
        qWarning("%s", qPrintable(done.error));
    }
    return done.value;
}

const QByteArray one_lamp = ets_addresses(ets_address(1, "Lamp", ets_type("DPST-1-1")));

}  // namespace

Q_DECLARE_METATYPE(ets::limits_t)

class tst_project_reader : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void addresses_with_what_they_say() {
        const project_t project = read(kit::ets_project(ets_addresses(ets_address(
            2305, "Lamp &amp; more", "Description=\"by the door\" " + ets_type("DPT-1")))));
        QCOMPARE(project.id, "P-0AF1");
        const ets::group_t lamp = project.groups.value(2305);
        QCOMPARE(lamp.name, "Lamp & more");
        QCOMPARE(lamp.description, "by the door");
        QCOMPARE(lamp.dpt, "1");
        QCOMPARE(lamp.ranges, (QStringList{"House", "Ground"}));
        QCOMPARE(project.notes, QStringList());
    }

    void style_is_the_project_s_data() {
        QTest::addColumn<QByteArray>("word");
        QTest::addColumn<QString>("address");
        QTest::newRow("three") << QByteArray("ThreeLevel") << "1/1/1";
        QTest::newRow("two") << QByteArray("TwoLevel") << "1/257";
        QTest::newRow("free") << QByteArray("Free") << "2305";
    }
    void style_is_the_project_s() {
        QFETCH(QByteArray, word);
        QTEST(read(kit::ets_project(one_lamp, word.constData())).address(2305), "address");
    }

    void names_of_files_may_be_written_as_elsewhere() {
        const project_t project =
            read(zip_of({{"P-0AF1\\Project.xml", kit::ets_information()},
                         {"P-0AF1\\0.xml", kit::ets_installation(one_lamp)}}));
        QCOMPARE(project.groups.size(), 1);
    }

    void type_is_that_of_a_linked_object_data() {
        QTest::addColumn<QByteArray>("object");
        QTest::addColumn<QByteArray>("refs");
        QTest::addColumn<QString>("type");
        const QByteArray typed_ref =
            "<ComObjectRef Id=\"M-00FA_A-0001-01-ABCD_O-4_R-9\" "
            "RefId=\"M-00FA_A-0001-01-ABCD_O-4\" DatapointType=\"DPST-1-2\"/>";
        const QByteArray bare_ref =
            "<ComObjectRef Id=\"M-00FA_A-0001-01-ABCD_O-4_R-9\" "
            "RefId=\"M-00FA_A-0001-01-ABCD_O-4\" DatapointType=\"\"/>";
        const QByteArray module_ref =
            "<ComObjectRef Id=\"M-00FA_A-0001-01-ABCD_MD-2_O-4_R-9\" "
            "RefId=\"M-00FA_A-0001-01-ABCD_MD-2_O-4\"/>";
        const QByteArray named =
            "<ComObjectInstanceRef RefId=\"M-00FA_A-0001-01-ABCD_O-4_R-9\">"
            "<Connectors><@ GroupAddressRefId=\"P-0AF1-0_GA-1\"/></Connectors>"
            "</ComObjectInstanceRef>";
        const QByteArray linked = "<ComObjectInstanceRef RefId=\"O-4_R-9\" Links=\"GA-7 GA-1\"/>";
        QTest::newRow("its own") << QByteArray(
                                        "<ComObjectInstanceRef RefId=\"O-4_R-9\" Links=\"GA-1\" "
                                        "DatapointType=\"DPST-1-3 DPST-1-2\"/>")
                                 << typed_ref << "1.003";
        QTest::newRow("the reference's") << linked << typed_ref << "1.002";
        QTest::newRow("the object's") << linked << bare_ref << "1.001";
        QTest::newRow("by a long name, sent")
            << QByteArray(named).replace('@', "Send") << typed_ref << "1.002";
        QTest::newRow("by a long name, received")
            << QByteArray(named).replace('@', "Receive") << bare_ref << "1.001";
        QTest::newRow("in a module")
            << QByteArray("<ComObjectInstanceRef RefId=\"MD-2_M-5_MI-1_O-4_R-9\" Links=\"GA-1\"/>")
            << module_ref << "5.001";
        QTest::newRow("the first that has one")
            << QByteArray("<ComObjectInstanceRef RefId=\"O-5_R-1\" Links=\"GA-1\"/>") + linked
            << typed_ref << "1.002";
        QTest::newRow("not linked")
            << QByteArray("<ComObjectInstanceRef RefId=\"O-4_R-9\"/>") << typed_ref << "";
    }
    void type_is_that_of_a_linked_object() {
        QFETCH(QByteArray, object);
        QFETCH(QByteArray, refs);
        const QByteArray objects =
            "<ComObject Id=\"M-00FA_A-0001-01-ABCD_O-4\" DatapointType=\"DPST-1-1 DPST-1-9\"/>"
            "<ComObject Id=\"M-00FA_A-0001-01-ABCD_O-5\" DatapointType=\"\"/>"
            "<ComObject Id=\"M-00FA_A-0001-01-ABCD_MD-2_O-4\" DatapointType=\"DPST-5-1\"/>";
        QTEST(read(project_with(object, program_file(objects, refs))).groups.value(1).dpt, "type");
    }

    void type_is_that_of_the_first_linked_object_that_has_one() {
        const QByteArray object =
            "<ComObjectInstanceRef RefId=\"O-@_R-9\" DatapointType=\"^\" Links=\"GA-1\"/>";
        QByteArray objects;
        for (const auto& [number, type] :
             {std::pair("4", ""), std::pair("5", "DPST-1-2"), std::pair("6", "DPST-1-3")}) {
            objects += QByteArray(object).replace('@', number).replace('^', type);
        }
        const project_t project =
            read(kit::ets_project(device(objects) + ets_addresses(ets_address(1, "Lamp"))));
        QCOMPARE(project.groups.value(1).dpt, "1.002");
    }

    void its_own_type_comes_first() {
        auto files = kit::ets_files(device("<ComObjectInstanceRef RefId=\"O-4_R-9\" Links=\"GA-1\" "
                                           "DatapointType=\"DPST-1-3\"/>") +
                                    one_lamp);
        QCOMPARE(read(zip_of(files)).groups.value(1).dpt, "1.001");
    }

    void program_is_what_the_hardware_says() {
        const QByteArray link = "<ComObjectInstanceRef RefId=\"O-4_R-9\" Links=\"GA-1\"/>";
        const QByteArray other = "M-00FA_H-7-1_HP-odd";
        auto files = kit::ets_files(device(link, other) + ets_addresses(ets_address(1, "Lamp")));
        files.append({"M-00FA/Hardware.xml",
                      ets_file("<Hardware2Program Id=\"" + other +
                               "\"><ApplicationProgramRef RefId=\"M-00FA_A-0001-01-ABCD\"/>"
                               "</Hardware2Program>")});
        files.append({"M-00FA/M-00FA_A-0001-01-ABCD.xml",
                      program_file("",
                                   "<ComObjectRef Id=\"M-00FA_A-0001-01-ABCD_O-4_R-9\" "
                                   "DatapointType=\"DPST-1-2\"/>")});
        QCOMPARE(read(zip_of(files)).groups.value(1).dpt, "1.002");
    }

    void functions_and_rooms() {
        const project_t project = read(kit::ets_project(
            device("<ComObjectInstanceRef RefId=\"O-4_R-9\" Links=\"GA-1 GA-2\"/>") +
            device("<ComObjectInstanceRef RefId=\"O-4_R-9\" Links=\"GA-2\"/>", hardware, "DI-2") +
            R"(<Locations><Space Type="Building" Name="Mill"><Space Type="Room" Name="Kitchen">
<DeviceInstanceRef RefId="P-0AF1-0_DI-1"/>
<Function Id="P-0AF1-0_F-3" Name="Ceiling" Type="FT-1">
<GroupAddressRef Role="SwitchOnOff" RefId="P-0AF1-0_GA-1"/>
<GroupAddressRef Role="InfoOnOff" RefId="P-0AF1-0_GA-9"/></Function></Space>
<Space Type="Room" Name="Cellar"><Space Type="DistributionBoard" Name="Box">
<DeviceInstanceRef RefId="P-0AF1-0_DI-2"/></Space></Space></Space></Locations>)" +
            ets_addresses(ets_address(1, "Lamp") + ets_address(2, "Other"))));
        QCOMPARE(project.functions,
                 (QList<ets::function_t>{
                     {"F-3", "FT-1", "Ceiling", "Kitchen", {{"SwitchOnOff", quint16(1)}}}}));
        QCOMPARE(project.groups.value(1).room, "Kitchen");
        QCOMPARE(project.groups.value(2).room, "Kitchen");
    }

    void addresses_that_are_none_or_twice_are_told() {
        const project_t project = read(kit::ets_project(
            ets_addresses(ets_address(1, "A") + ets_address(1, "B") + ets_address(70000, "C"))));
        QCOMPARE(project.groups.value(1).name, "A");
        QCOMPARE(project.notes,
                 (QStringList{"0/0/1 is there more than once; the first one is taken.",
                              "\"70000\" is no group address and is left out."}));
    }

    void protected_projects_open_with_their_password_data() {
        QTest::addColumn<QByteArray>("zip");
        const QByteArray derived = ets::derived_zip_password("geheim ü");
        QTest::newRow("ETS 6") << kit::ets_locked(one_lamp, zip_lock_t::aes, derived);
        QTest::newRow("ETS 5") << kit::ets_locked(one_lamp, zip_lock_t::traditional,
                                                  "geheim \xc3\xbc");
        QTest::newRow("ETS 4") << kit::ets_locked(one_lamp, zip_lock_t::traditional, "geheim \xfc");
    }
    void protected_projects_open_with_their_password() {
        QFETCH(QByteArray, zip);
        bool used = false;
        const project_t project = read(zip, {.password = "geheim ü", .password_used = &used});
        QCOMPARE(project.groups.value(1).name, "Lamp");
        QVERIFY(used);
    }

    void others_open_with_any() {
        bool used = true;
        const project_t project =
            read(kit::ets_project(one_lamp), {.password = "geheim", .password_used = &used});
        QCOMPARE(project.groups.size(), 1);
        QVERIFY(!used);
    }

    void wrong_and_missing_passwords_data() {
        QTest::addColumn<bool>("is_aes");
        QTest::newRow("ETS 6") << true;
        QTest::newRow("ETS 5") << false;
    }
    void wrong_and_missing_passwords() {
        QFETCH(bool, is_aes);
        const QByteArray zip =
            kit::ets_locked(one_lamp, is_aes ? zip_lock_t::aes : zip_lock_t::traditional, "right");
        QCOMPARE(read_project(zip, {}).error, "The project is protected: its password is missing.");
        const QString error = read_project(zip, {.password = "wrong"}).error;
        QVERIFY2(error.startsWith("The password of the project is wrong"), qPrintable(error));
    }

    void a_cut_off_zip_is_refused_at_every_place() {
        const QByteArray zip = kit::ets_project(one_lamp);
        for (qsizetype size = 0; size < zip.size(); size += 7) {
            const auto done = read_project(zip.left(size), {});
            QVERIFY2(done.error.startsWith("The zip is damaged or cut off"),
                     qPrintable(QString::number(size) + done.error));
        }
    }

    void a_changed_byte_is_noticed_where_it_is_read() {
        const QByteArray plain = zip_of({{"P-0AF1/project.xml", kit::ets_information()},
                                         {"P-0AF1/0.xml", kit::ets_installation(one_lamp)}});
        int refused = 0;
        const qsizetype begin = plain.indexOf("P-0AF1/0.xml") + 12;
        for (qsizetype place = begin + 40; place < begin + 140; ++place) {
            QByteArray changed = plain;
            changed[place] = char(changed[place] ^ 0x10);
            refused += read_project(changed, {}).is_ok() ? 0 : 1;
        }
        QCOMPARE(refused, 100);
    }

    void limits_data() {
        QTest::addColumn<ets::limits_t>("limits");
        QTest::addColumn<QString>("error");
        ets::limits_t limits;
        limits.entry_bytes = 1000;
        QTest::newRow("a file that is too large")
            << limits << "P-0AF1/0.xml is larger than any project.";
        limits = {};
        limits.total_bytes = 20'000;
        QTest::newRow("all together") << limits << "P-0AF1/0.xml is larger than any project.";
        limits = {};
        limits.entries = 2;
        QTest::newRow("files") << limits << "The zip holds more than 2 files.";
        limits = {};
        limits.links = 3;
        QTest::newRow("links") << limits << "P-0AF1/0.xml holds more than any project.";
    }
    void limits() {
        QFETCH(ets::limits_t, limits);
        const QByteArray object = "<ComObjectInstanceRef RefId=\"O-4_R-9\" Links=\"GA-1\"/>";
        const QByteArray zip = kit::ets_project(device(object.repeated(1000)) + one_lamp);
        QTEST(read_project(zip, {.limits = limits}).error, "error");
    }

    void only_needed_files_are_unpacked() {
        auto files = kit::ets_files(one_lamp);
        files.append({"M-00FA/Baggages/big.bin", QByteArray(1 << 20, 'x')});
        files.append({"M-00FA/" + program + ".xml", "no XML at all"});
        ets::limits_t limits;
        limits.total_bytes = 100'000;
        QCOMPARE(read_project(zip_of(files), {.limits = limits}).error, QString());
    }

    void refused_data() {
        QTest::addColumn<QByteArray>("zip");
        QTest::addColumn<QString>("error");
        const auto information = kit::ets_information();
        QTest::newRow("another program's")
            << zip_of({{"word/document.xml", "<a/>"}}) << "The zip holds no ETS project.";
        QTest::newRow("empty") << zip_of({})
                               << "The zip is damaged or cut off (Unrecognized archive format).";
        QTest::newRow("without its installation")
            << zip_of({{"P-0AF1/project.xml", information}}) << "The zip holds no ETS project.";
        QTest::newRow("another XML")
            << zip_of({{"P-0AF1/project.xml", information}, {"P-0AF1/0.xml", "<svg/>"}})
            << "P-0AF1/0.xml is no file of ETS.";
        QTest::newRow("entities")
            << zip_of({{"P-0AF1/project.xml", information},
                       {"P-0AF1/0.xml", "<!DOCTYPE KNX [<!ENTITY a 'b'>]><KNX/>"}})
            << "P-0AF1/0.xml: line 1: it has a document type, and with that may have entities.";
        QTest::newRow("a file twice") << zip_of({{"P-0AF1/project.xml", information},
                                                 {"P-0AF1/0.xml", "<a/>"},
                                                 {"P-0AF1/0.xml", "<a/>"}})
                                      << "The zip holds P-0AF1/0.xml twice.";
    }
    void refused() {
        QFETCH(QByteArray, zip);
        QTEST(read_project(zip, {}).error, "error");
    }

    void ten_thousand_addresses_take_seconds() {
        QByteArray objects;
        QByteArray addresses;
        for (int raw = 1; raw <= 10'000; ++raw) {
            const QByteArray number = QByteArray::number(raw);
            objects += "<ComObjectInstanceRef RefId=\"O-4_R-9\" Links=\"GA-" + number + "\"/>";
            addresses += ets_address(raw, "Lamp " + number);
        }
        QElapsedTimer timer;
        timer.start();
        const project_t project =
            read(zip_of(kit::ets_files(device(objects) + ets_addresses(addresses))));
        QCOMPARE(project.groups.size(), 10'000);
        QVERIFY2(timer.elapsed() < 20'000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(tst_project_reader)
#include "tst_project_reader.moc"

#include "ets/house_document.h"

#include <QTest>

#include "installation/document_reader.h"

using ets::group_t;
using ets::house_document;
using ets::project_t;

namespace {

/// 1/1/n.
constexpr quint16 at(int _sub) {
    return quint16((1 << 11) | (1 << 8) | _sub);
}

group_t group(quint16 _raw, const char* _name, const char* _dpt, const char* _room = "") {
    return {.raw = _raw,
            .name = QString::fromUtf8(_name),
            .description = {},
            .dpt = QString::fromUtf8(_dpt),
            .ranges = {},
            .room = QString::fromUtf8(_room)};
}

project_t project_of(const QList<group_t>& _groups, const QList<ets::function_t>& _functions = {}) {
    project_t project;
    project.id = "P-0AF1";
    for (const group_t& one : _groups) {
        project.groups.insert(one.raw, one);
    }
    project.functions = _functions;
    return project;
}

ets::function_t function(const char* _type, const QList<ets::role_t>& _roles,
                         const char* _room = "Kitchen") {
    return {.id = "F-1",
            .type = QString::fromUtf8(_type),
            .name = "Ceiling",
            .room = QString::fromUtf8(_room),
            .roles = _roles};
}

QJsonObject made_of(project_t _project, QStringList* _notes = nullptr) {
    const QByteArray text = house_document(&_project, {});
    if (_notes != nullptr) {
        *_notes = _project.notes;
    }
    return QJsonDocument::fromJson(text).object();
}

/// "1.001 1/1/1 [1/1/2] r": the type, where it is written, where it is told, whether it can only be
/// read.
QString item_text(const QJsonObject& _house, const QJsonValue& _id) {
    if (_id.isNull()) {
        return "-";
    }
    const QJsonObject item = _house["items"].toObject()[_id.toString()].toObject();
    const QJsonObject knx = item["knx"].toObject();
    QStringList status;
    for (const QJsonValue& one : knx["status"].toArray()) {
        status.append(one.toString());
    }
    QStringList words{knx["dpt"].toString()};
    words += knx.contains("write") ? QStringList{knx["write"].toString()} : QStringList();
    words += status.isEmpty() ? QStringList() : QStringList{"[" + status.join(' ') + "]"};
    words += item["writable"] == QJsonValue(false) ? QStringList{"r"} : QStringList();
    return words.join(' ');
}

/// "1 Kitchen: Ceiling execute=1.001 1/1/1 [1/1/2]", one for each element.
QStringList elements_of(const QJsonObject& _house) {
    QStringList all;
    const QJsonObject elements = _house["elements"].toObject();
    for (auto it = elements.begin(); it != elements.end(); ++it) {
        const QJsonObject element = it->toObject();
        QString text = QString::number(element["type"].toInt()) + ' ' + element["name"].toString();
        const QJsonObject thermostat =
            _house["thermostats"].toObject()[element["thermostat"].toString()].toObject();
        const QJsonObject points = element.contains("thermostat") ? thermostat["ids"].toObject()
                                                                  : element["functions"].toObject();
        for (auto point = points.begin(); point != points.end(); ++point) {
            text += ", " + point.key() + ' ' + item_text(_house, point.value());
        }
        for (const char* key : {"id_actual", "id_windows_contact"}) {
            text += thermostat.contains(QLatin1String(key))
                        ? QString(", %1 ").arg(key) + item_text(_house, thermostat[key])
                        : QString();
        }
        all.append(text);
    }
    return all;
}

}  // namespace

using groups_t = QList<group_t>;

class tst_house_document : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void functions_become_elements_data() {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QList<ets::role_t>>("roles");
        QTest::addColumn<QStringList>("elements");
        using roles_t = QList<ets::role_t>;
        QTest::newRow("lamp") << "FT-1" << roles_t{{"SwitchOnOff", at(1)}, {"InfoOnOff", at(2)}}
                              << QStringList{"1 Kitchen: Ceiling, execute 1.001 1/1/1 [1/1/2]"};
        QTest::newRow("lamp by other words")
            << "FT-1" << roles_t{{"DR-1", at(1)}, {"DR-2", at(2)}}
            << QStringList{"1 Kitchen: Ceiling, execute 1.001 1/1/1 [1/1/2]"};
        QTest::newRow("lamp that only tells")
            << "FT-1" << roles_t{{"InfoOnOff", at(2)}}
            << QStringList{"1 Kitchen: Ceiling, execute 1.001 [1/1/2] r"};
        QTest::newRow("dimmer")
            << "FT-6"
            << roles_t{{"SwitchOnOff", at(1)},
                       {"InfoOnOff", at(2)},
                       {"DimmingValue", at(3)},
                       {"InfoDimmingValue", at(4)}}
            << QStringList{
                   "2 Kitchen: Ceiling, execute 1.001 1/1/1 [1/1/2], level 5.001 1/1/3 [1/1/4]"};
        QTest::newRow("former dimmer")
            << "FT-2" << roles_t{{"SwitchOnOff", at(1)}, {"InfoDimmingValue", at(3)}}
            << QStringList{"2 Kitchen: Ceiling, execute 1.001 1/1/1, level 5.001 1/1/3"};
        QTest::newRow("blind")
            << "FT-7"
            << roles_t{{"MoveUpDown", at(1)},
                       {"StopStepUpDown", at(2)},
                       {"CurrentAbsolutePositionBlindsPercentage", at(3)}}
            << QStringList{
                   "3 Kitchen: Ceiling, move 1.008 1/1/1, position 5.001 [1/1/3] r, slat -, "
                   "stop 1.007 1/1/2"};
        QTest::newRow("heating")
            << "FT-9"
            << roles_t{{"TempRoom", at(1)},
                       {"TempRoomSetpoint", at(2)},
                       {"HVACMode", at(3)},
                       {"ValvePosition", at(4)},
                       {"WindowStatus", at(5)}}
            << QStringList{
                   "5 Kitchen: bare 1, temperature 9.001 [1/1/1] r",
                   "17 Kitchen: Ceiling, mode 20.102 1/1/3, setpoint 9.001 1/1/2, valve 5.001 "
                   "[1/1/4] r, id_actual 9.001 [1/1/1] r, id_windows_contact 1.019 [1/1/5] r",
                   "7 Kitchen: bare 5, open 1.019 [1/1/5] r"};
        QTest::newRow("of another type")
            << "FT-0" << roles_t{{"SwitchOnOff", at(1)}} << QStringList();
    }
    void functions_become_elements() {
        QFETCH(QString, type);
        QFETCH(QList<ets::role_t>, roles);
        groups_t groups;
        for (const ets::role_t& role : roles) {
            groups.append(
                group(role.raw, qPrintable("bare " + QString::number(role.raw & 255)), ""));
        }
        const auto house = made_of(project_of(groups, {function(qPrintable(type), roles)}));
        QTEST(elements_of(house), "elements");
    }

    void the_rest_is_paired_data() {
        QTest::addColumn<groups_t>("groups");
        QTest::addColumn<QStringList>("elements");
        QTest::newRow("switch and status")
            << groups_t{group(at(1), "Mill lamp", "1.001"),
                        group(at(2), "Mill lamp status", "1.011")}
            << QStringList{"1 Mill lamp, execute 1.001 1/1/1 [1/1/2]"};
        QTest::newRow("two of one name, one after the other")
            << groups_t{group(at(1), "Lamp", "1.001"), group(at(2), "Lamp status", "1.001"),
                        group(at(3), "Lamp", "1.001"), group(at(4), "Lamp status", "1.001")}
            << QStringList{"1 Lamp, execute 1.001 1/1/1 [1/1/2]",
                           "1 Lamp, execute 1.001 1/1/3 [1/1/4]"};
        group_t first = group(at(1) + 256, "Lamp", "1.001");
        group_t second = group(at(2) + 256, "Lamp", "1.001");
        first.ranges = second.ranges = {"Light", "Status"};
        QTest::newRow("two of one name, states in a group of their own")
            << groups_t{group(at(1), "Lamp", "1.001"), group(at(2), "Lamp", "1.001"), first, second}
            << QStringList{"1 Lamp, execute 1.001 1/1/1 [1/2/1]",
                           "1 Lamp, execute 1.001 1/1/2 [1/2/2]"};
        QTest::newRow("dimmer")
            << groups_t{group(at(1), "Mill lamp on/off", "1.001"),
                        group(at(2), "Mill lamp dim", "3.007"),
                        group(at(3), "Mill lamp value", "5.001"),
                        group(at(4), "Mill lamp status value", "5.001"),
                        group(at(5), "Mill lamp status", "1.001")}
            << QStringList{
                   "2 Mill lamp on/off, execute 1.001 1/1/1 [1/1/5], level 5.001 1/1/3 "
                   "[1/1/4]"};
        QTest::newRow("blind")
            << groups_t{group(at(1), "Mill west up/down", "1.008"),
                        group(at(2), "Mill west stop", "1.010"),
                        group(at(3), "Mill west position", "5.001"),
                        group(at(4), "Mill west position status", "5.001"),
                        group(at(5), "Mill west slat", "5.001")}
            << QStringList{
                   "3 Mill west up/down, move 1.008 1/1/1, position 5.001 1/1/3 [1/1/4], slat "
                   "5.001 1/1/5, stop 1.010 1/1/2"};
        QTest::newRow("heating")
            << groups_t{group(at(1), "Mill set point", "9.001"),
                        group(at(2), "Mill temperature", "9.001"),
                        group(at(3), "Mill valve", "5.001")}
            << QStringList{
                   "17 Mill set point, mode -, setpoint 9.001 1/1/1, valve 5.001 [1/1/3] r, "
                   "id_actual 9.001 [1/1/2] r",
                   "5 Mill temperature, temperature 9.001 [1/1/2] r"};
        QTest::newRow("sensors") << groups_t{group(at(1), "Outside", "9.001"),
                                             group(at(2), "Mill humidity", "9.007"),
                                             group(at(3), "Mill door", "1.019")}
                                 << QStringList{"5 Outside, temperature 9.001 [1/1/1] r",
                                                "6 Mill humidity, humidity 9.007 [1/1/2] r",
                                                "7 Mill door, open 1.019 [1/1/3] r"};
        QTest::newRow("socket") << groups_t{group(at(1), "Mill saw", "1.001"),
                                            group(at(2), "Mill saw power", "14.056"),
                                            group(at(3), "Mill socket", "1")}
                                << QStringList{
                                       "4 Mill saw, execute 1.001 1/1/1, power 14.056 [1/1/2] r",
                                       "4 Mill socket, execute 1.001 1/1/3, power -"};
        QTest::newRow("names that say only what they do, in rooms")
            << groups_t{group(at(1), "Switch", "1.001", "Mill"),
                        group(at(2), "Mill ceiling", "1.001", "Mill")}
            << QStringList{"1 Mill: Switch, execute 1.001 1/1/1",
                           "1 Mill ceiling, execute 1.001 1/1/2"};
    }
    void the_rest_is_paired() {
        QFETCH(groups_t, groups);
        QStringList notes;
        const auto house = made_of(project_of(groups), &notes);
        QTEST(elements_of(house), "elements");
        QCOMPARE(notes, QStringList());
    }

    void what_no_element_is_made_of_is_told_data() {
        QTest::addColumn<groups_t>("groups");
        QTest::addColumn<QString>("note");
        QTest::newRow("no type") << groups_t{group(at(1), "Odd", "")}
                                 << "1/1/1 \"Odd\" is left out: it has no data point type.";
        QTest::newRow("no element")
            << groups_t{group(at(1), "Odd", "16.000")}
            << "1/1/1 \"Odd\" is left out: it is of type 16.000, which no element has a use for.";
        QTest::newRow("dims alone")
            << groups_t{group(at(1), "Odd", "3.007")}
            << "1/1/1 \"Odd\" is left out: it dims up and down, and no value was found beside it.";
    }
    void what_no_element_is_made_of_is_told() {
        QFETCH(groups_t, groups);
        QFETCH(QString, note);
        QStringList notes;
        const auto house = made_of(project_of(groups), &notes);
        QCOMPARE(elements_of(house), QStringList());
        QCOMPARE(notes, QStringList{note});
    }

    void an_address_of_several_functions_is_nobody_s_own() {
        const groups_t groups{group(at(1), "All lamps", "1.001"), group(at(2), "Lamp", "1.001"),
                              group(at(3), "Other", "1.001")};
        ets::function_t other = function("FT-1", {{"SwitchOnOff", at(1)}, {"SwitchOnOff", at(3)}});
        other.id = "F-2";
        const auto house = made_of(project_of(
            groups, {function("FT-1", {{"SwitchOnOff", at(1)}, {"SwitchOnOff", at(2)}}), other}));
        QCOMPARE(elements_of(house), (QStringList{"1 All lamps, execute 1.001 1/1/1",
                                                  "1 Kitchen: Ceiling, execute 1.001 1/1/2",
                                                  "1 Kitchen: Ceiling, execute 1.001 1/1/3"}));
    }

    void scenes_become_scenarios_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("dpt");
        QTest::addColumn<QString>("knx");
        QTest::addColumn<int>("notes");
        QTest::newRow("with a number") << "Mill scene 3"
                                       << "17.001"
                                       << R"({"scene":3,"write":"1/1/1"})" << 0;
        QTest::newRow("of the other type") << "Mill scene 3"
                                           << "18.001"
                                           << R"({"dpt":"18.001","scene":3,"write":"1/1/1"})" << 0;
        QTest::newRow("without") << "Mill mood"
                                 << "17.001"
                                 << R"({"scene":1,"write":"1/1/1"})" << 1;
    }
    void scenes_become_scenarios() {
        QFETCH(QString, name);
        QFETCH(QString, dpt);
        QFETCH(int, notes);
        QStringList told;
        const auto house =
            made_of(project_of({group(at(1), qPrintable(name), qPrintable(dpt))}), &told);
        const QJsonObject element = house["elements"].toObject().begin()->toObject();
        QCOMPARE(element["type"].toInt(), 8);
        const QJsonObject scenario =
            house["scenarios"].toObject()[element["scenario"].toString()].toObject();
        QTEST(QString::fromUtf8(
                  QJsonDocument(scenario["knx"].toObject()).toJson(QJsonDocument::Compact)),
              "knx");
        QCOMPARE(told.size(), notes);
    }

    void topic_is_the_project_s_data() {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("topic");
        QTest::newRow("project") << "P-0AF1"
                                 << "installation/P-0AF1";
        QTest::newRow("export") << ""
                                << "installation/ets";
        QTest::newRow("no level of a topic") << "a#b"
                                             << "installation/ets";
    }
    void topic_is_the_project_s() {
        QFETCH(QString, id);
        project_t project = project_of({});
        project.id = id;
        QTEST(made_of(project)["topic"].toString(), "topic");
    }

    void identifiers_stay_when_things_are_renamed_and_added() {
        const groups_t groups{group(at(1), "Lamp", "1.001"), group(at(2), "Lamp status", "1.001")};
        groups_t later{group(quint16(5), "Another", "1.001"), group(at(1), "Light", "1.001"),
                       group(at(2), "Light status", "1.001")};
        const QJsonObject before = made_of(project_of(groups));
        const QJsonObject after = made_of(project_of(later));
        QCOMPARE(before["elements"].toObject().keys(), QStringList("e-1-1-1"));
        QVERIFY(after["elements"].toObject().contains("e-1-1-1"));
        QCOMPARE(after["items"]["i-1-1-1"], before["items"]["i-1-1-1"]);
    }

    void addresses_are_in_the_project_s_style() {
        project_t project = project_of({group(at(1), "Lamp", "1.001")});
        project.style = knx::address_style_t::two_levels;
        QCOMPARE(elements_of(made_of(project)), QStringList("1 Lamp, execute 1.001 1/257"));
    }

    void the_owner_may_do_everything_and_the_import_takes_it_all() {
        project_t project =
            project_of({group(at(1), "La\tmp", "1.001"), group(at(2), "Mill scene", "17.001"),
                        group(at(3), "Mill set point", "9.001")});
        const QByteArray hash =
            "$7$10$c21hbGwgaG9tZSBh$GMoX1+jp11QRMXy5IUqumGIdIXzA4uKiFXyQ6eg7CZHns9P9QmK76PWRcGcu32/"
            "PtG9Bb2OuGv3yvN4npSp+2Q==";
        const auto read = database::installation::read_document(
            house_document(&project, ets::owner_t{"alice", hash}), "h");
        QCOMPARE(read.error, QString());
        QCOMPARE(read.value.users["u-alice"].username, "alice");
        QCOMPARE(read.value.elements.size(), 3);
        for (const QString& id : read.value.elements.keys()) {
            QCOMPARE(read.value.permissions["u-alice"].value(id), 3);
        }
        QCOMPARE(read.value.elements["e-1-1-1"].name, "La mp");
    }

    void equal_projects_give_equal_bytes() {
        const project_t project =
            project_of({group(at(1), "Lamp", "1.001"), group(at(2), "Lamp status", "1.001")},
                       {function("FT-1", {{"SwitchOnOff", at(1)}})});
        project_t one = project;
        project_t other = project;
        QCOMPARE(house_document(&one, {}), house_document(&other, {}));
    }

    void ten_thousand_of_one_name_take_seconds() {
        groups_t groups;
        for (int raw = 1; raw <= 10'000; ++raw) {
            groups.append(group(quint16(raw), "Lamp", "1.001"));
        }
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(made_of(project_of(groups))["elements"].toObject().size(), 10'000);
        QVERIFY2(timer.elapsed() < 60'000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(tst_house_document)
#include "tst_house_document.moc"

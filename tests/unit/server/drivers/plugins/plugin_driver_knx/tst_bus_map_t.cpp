#include <QTest>

#include "drivers/plugins/plugin_driver_knx/bus_map_t.h"

using namespace knx;

class tst_bus_map_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void several_items_may_listen_to_one_address();
    void without_status_the_write_address_is_heard();
    void each_address_is_asked_once();
    void scene_is_a_listener_of_its_address();
    void one_item_answers();
};

namespace {

group_address_t address(const char* _text) {
    return *group_address_t::from_text(QString::fromLatin1(_text));
}

QStringList heard_by(const bus_map_t& _map, const char* _address) {
    QStringList ids;
    for (const bus_point_t* point : _map.listeners(address(_address))) {
        ids.append(point->id);
    }
    return ids;
}

bus::bus_data_t data(const char* _write, const QStringList& _status, bool _read = true) {
    bus::bus_data_t data;
    data.dpt = "1.001";
    data.write = QString::fromLatin1(_write);
    data.status = _status;
    data.read = _read;
    return data;
}

}  // namespace

void tst_bus_map_t::several_items_may_listen_to_one_address() {
    const bus_map_t map({{"a", data("1/1/1", {"1/1/9", "1/1/8", "1/265"})},
                         {"b", data("1/1/2", {"1/1/9"})},
                         {"c", data("", {"1/1/7"})}},
                        {});
    QCOMPARE(heard_by(map, "1/1/9"), QStringList({"a", "b"}));
    QCOMPARE(heard_by(map, "1/1/8"), QStringList({"a"}));
    QCOMPARE(heard_by(map, "1/1/1"), QStringList());
    QVERIFY(!map.item("c")->write);
    QVERIFY(map.item("d") == nullptr);
}

void tst_bus_map_t::without_status_the_write_address_is_heard() {
    const bus_map_t map({{"a", data("1/1/1", {})}}, {});
    QCOMPARE(heard_by(map, "1/1/1"), QStringList({"a"}));
}

void tst_bus_map_t::each_address_is_asked_once() {
    const bus_map_t map({{"a", data("1/1/1", {"1/1/9", "1/1/8"})},
                         {"b", data("1/1/2", {"1/1/9"})},
                         {"c", data("1/1/3", {"1/1/3"})},
                         {"d", data("1/1/4", {"1/1/4"}, false)}},
                        {});
    QCOMPARE(map.questions(), QList<group_address_t>({address("1/1/3"), address("1/1/9")}));
}

void tst_bus_map_t::scene_is_a_listener_of_its_address() {
    bus::bus_data_t scene;
    scene.dpt = "17.001";
    scene.write = "0/7/1";
    scene.scene = 3;
    const bus_map_t map({}, {{"s-night", scene}});
    QCOMPARE(heard_by(map, "0/7/1"), QStringList({"s-night"}));
    QVERIFY(map.scenario("s-night")->is_scenario());
    QVERIFY(map.item("s-night") == nullptr);
}

void tst_bus_map_t::one_item_answers() {
    bus::bus_data_t answering = data("1/1/1", {});
    answering.answer = true;
    const bus_map_t map({{"a", data("1/1/1", {})}, {"b", answering}, {"c", answering}}, {});
    QCOMPARE(map.answerer(address("1/1/1"))->id, "b");
    QVERIFY(map.answerer(address("1/1/2")) == nullptr);
}

QTEST_GUILESS_MAIN(tst_bus_map_t)
#include "tst_bus_map_t.moc"

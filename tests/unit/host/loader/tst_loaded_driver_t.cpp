#include "loader/loaded_driver_t.h"

#include <QTest>

#include "drivers/driver/capability/plugin_driver_IComunication.h"
#include "fakes/scripted_endpoint_t.h"

using loader::loaded_driver_t;

namespace {

/// What the driver's two answers are, and what it was handed, in order.
struct script_t {
    bool has_comunication = true;
    bool takes_database = true;
    bool takes_endpoint = true;
    QList<const void*> handed;
};

class driver_t : public interfaces::plugin_driver_interface_t, public interfaces::IComunication {
 public:
    explicit driver_t(script_t* _script)
        : plugin_driver_interface_t("lights", "1", false), script(_script) {}

    bool init_database(database::database_t* _database) override {
        script->handed.append(_database);
        return script->takes_database;
    }
    bool init_comunication(comunication::protoserver_t* _endpoint) override {
        script->handed.append(_endpoint);
        return script->takes_endpoint;
    }
    void* getCapability(const char* _name) override {
        return script->has_comunication && qstrcmp(_name, "IComunication") == 0
                   ? static_cast<interfaces::IComunication*>(this)
                   : nullptr;
    }
    void init_event_to_dispatcher(bool, QObject*) override {}
    bool finalize_database_initialization() override { return true; }
    bool finalize_comunication_initialization() override { return true; }
    void init_comunication_event(bool) override {}
    void start(bool) override {}

 private:
    script_t* const script;
};

}  // namespace

class tst_loaded_driver_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init_hands_out_the_database_before_the_endpoint_data() {
        QTest::addColumn<script_t>("script");
        QTest::addColumn<bool>("taken");
        QTest::addColumn<int>("handed");
        QTest::newRow("all is taken") << script_t{true, true, true, {}} << true << 2;
        QTest::newRow("no use for an endpoint") << script_t{false, true, true, {}} << true << 1;
        QTest::newRow("no database") << script_t{true, false, true, {}} << false << 1;
        QTest::newRow("no endpoint") << script_t{true, true, false, {}} << false << 2;
    }
    void init_hands_out_the_database_before_the_endpoint() {
        QFETCH(script_t, script);
        const loaded_driver_t loaded("file", {}, new driver_t(&script));
        database::database_t database;
        fakes::scripted_endpoint_t endpoint;
        QTEST(loaded.init(&database, &endpoint, nullptr), "taken");
        const QList<const void*> all{&database, &endpoint};
        QFETCH(int, handed);
        QCOMPARE(script.handed, all.first(handed));
    }

    void a_driver_that_somebody_deleted_takes_nothing() {
        script_t script;
        auto* const driver = new driver_t(&script);
        const loaded_driver_t loaded("file", {}, driver);
        delete driver;
        QVERIFY(!loaded.init(nullptr, nullptr, nullptr));
    }

    void the_driver_goes_with_it_and_moves_with_it() {
        script_t script;
        const QPointer<QObject> driver = new driver_t(&script);
        {
            loaded_driver_t first(
                "file", {}, static_cast<interfaces::plugin_driver_interface_t*>(driver.data()));
            const loaded_driver_t second(std::move(first));
            QCOMPARE(second.get_driver(), driver.data());
        }
        QVERIFY(driver.isNull());
    }
};

QTEST_GUILESS_MAIN(tst_loaded_driver_t)
#include "tst_loaded_driver_t.moc"

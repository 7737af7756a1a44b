#include "drivers/driver/capability/with_capabilities_t.h"

#include <QTest>

#include "drivers/driver/capability/plugin_driver_IComunication.h"

namespace {

/// A second service, to see that each is found under its own name.
class IClock {
 public:
    static constexpr const char* capability_name = "IClock";
    virtual ~IClock() = default;
    int hour = 7;
};

class driver_t : public QObject,
                 public interfaces::WithCapabilities<driver_t, interfaces::IComunication, IClock> {
 public:
    bool finalize_comunication_initialization() override { return true; }
    void init_comunication_event(bool) override {}
};

}  // namespace

class tst_with_capabilities_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_capability_is_found_by_its_exact_name_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("found");
        QTest::newRow("its name") << QByteArray("IComunication") << true;
        QTest::newRow("lower case") << QByteArray("icomunication") << false;
        QTest::newRow("upper case") << QByteArray("ICOMUNICATION") << false;
        QTest::newRow("without I") << QByteArray("Comunication") << false;
        QTest::newRow("with namespace") << QByteArray("interfaces::IComunication") << false;
        QTest::newRow("spelled well") << QByteArray("ICommunication") << false;
        QTest::newRow("trailing blank") << QByteArray("IComunication ") << false;
        QTest::newRow("prefix") << QByteArray("IComunicatio") << false;
        QTest::newRow("empty") << QByteArray("") << false;
    }
    void a_capability_is_found_by_its_exact_name() {
        QFETCH(QByteArray, name);
        QFETCH(bool, found);
        driver_t driver;
        interfaces::IComunication* part = found ? &driver : nullptr;
        QCOMPARE(driver.dispatchCapability(name.constData()), static_cast<void*>(part));
    }

    void no_name_finds_nothing() {
        driver_t driver;
        QCOMPARE(driver.dispatchCapability(nullptr), nullptr);
    }

    void each_capability_gives_its_own_part() {
        driver_t driver;
        driver.hour = 9;
        void* clock = driver.dispatchCapability("IClock");
        QVERIFY(clock != nullptr);
        QCOMPARE(static_cast<IClock*>(clock)->hour, 9);
        QVERIFY(clock != driver.dispatchCapability("IComunication"));
    }

    void it_adds_no_fields() {
        QCOMPARE(sizeof(interfaces::WithCapabilities<driver_t, interfaces::IComunication>),
                 sizeof(interfaces::IComunication));
    }
};

QTEST_GUILESS_MAIN(tst_with_capabilities_t)
#include "tst_with_capabilities_t.moc"

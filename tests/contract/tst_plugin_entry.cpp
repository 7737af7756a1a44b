// The loaded plugin's root object: how often there is one, what it casts to, what it offers.
#include <QPointer>
#include <QTest>

#include "contract/support/loaded_plugin_t.h"
#include "fakes/recording_logger_t.h"

class tst_plugin_entry : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() { QVERIFY2(plugin.is_loaded(), qPrintable(plugin.error())); }

    void the_entry_points_have_plain_names() {
        QVERIFY(plugin.instance() != nullptr);
        QVERIFY(plugin.query() != nullptr);
    }

    void there_is_one_object_until_the_host_deletes_it() {
        fakes::recording_logger_t logger;
        const QString constructed = QStringLiteral("Constructor plugin plugin_driver_api v. 0.1");
        const QPointer<QObject> first = plugin.instance()();
        QVERIFY(!first.isNull());
        QCOMPARE(first->parent(), nullptr);
        QCOMPARE(plugin.instance()(), first.data());
        QCOMPARE(logger.count(constructed), 1);
        // Held in memory, so that the next object cannot get the same address.
        const auto kept = std::make_unique<QObject>();
        delete first.data();
        QVERIFY(first.isNull());
        const std::unique_ptr<QObject> second(plugin.instance()());
        QVERIFY(second != nullptr);
        QCOMPARE(logger.count(constructed), 2);
        QCOMPARE(plugin.instance()(), second.get());
    }

    void casts_data() {
        QTest::addColumn<QByteArray>("word");
        QTest::addColumn<QString>("part");
        const auto row = [](const char* word, const char* part) {
            QTest::newRow(word) << QByteArray(word) << QString::fromLatin1(part);
        };
        row("interfaces::plugin_driver_api_t", "object");
        row("WithCapabilities<plugin_driver_api_t,IComunication>", "capability");
        row("org.kelma.torlan.interface", "object");
        row("QObject", "object");
        row("org.kelma.torlan.interfaces", "none");
        row("org.kelma.torlan.Interface", "none");
        row("plugin_driver_api_t", "none");
        row("interfaces::plugin_driver_interface_t", "none");
        row("WithCapabilities<plugin_driver_api_t, IComunication>", "none");
        row("interfaces::WithCapabilities<plugin_driver_api_t,IComunication>", "none");
        row("IComunication", "none");
        row("interfaces::IComunication", "none");
        row("", "none");
    }
    void casts() {
        QFETCH(QByteArray, word);
        QFETCH(QString, part);
        const auto driver = plugin.driver();
        void* expected = nullptr;
        if (part == QStringLiteral("object")) {
            expected = driver.get();
        } else if (part == QStringLiteral("capability")) {
            expected = driver->getCapability("IComunication");
            QVERIFY(expected != nullptr);
        }
        QCOMPARE(driver->qt_metacast(word.constData()), expected);
    }

    void no_name_casts_to_nothing() {
        const auto driver = plugin.driver();
        QCOMPARE(driver->qt_metacast(nullptr), nullptr);
        QCOMPARE(driver->getCapability(nullptr), nullptr);
    }

    void the_capability_stands_behind_the_base() {
        const auto driver = plugin.driver();
        const auto* object = reinterpret_cast<const char*>(static_cast<QObject*>(driver.get()));
        const auto* part = static_cast<const char*>(driver->getCapability("IComunication"));
        QVERIFY(part > object);
        QCOMPARE(std::size_t(part - object) % sizeof(void*), std::size_t(0));
        QVERIFY(std::size_t(part - object) >= sizeof(interfaces::plugin_driver_interface_t));
    }

    void capabilities_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("offered");
        const auto row = [](const char* name, bool offered) {
            QTest::newRow(name) << QByteArray(name) << offered;
        };
        row("IComunication", true);
        row("icomunication", false);
        row("Comunication", false);
        row("ICommunication", false);
        row("IComunication ", false);
        row("interfaces::IComunication", false);
    }
    void capabilities() {
        QFETCH(QByteArray, name);
        QFETCH(bool, offered);
        const auto driver = plugin.driver();
        QCOMPARE(driver->getCapability(name.constData()) != nullptr, offered);
        QCOMPARE(driver->getCapability(""), nullptr);
    }

    void the_meta_object_has_the_namespace() {
        const auto driver = plugin.driver();
        QCOMPARE(QByteArray(driver->metaObject()->className()),
                 QByteArray("interfaces::plugin_driver_api_t"));
    }

 private:
    support::loaded_plugin_t plugin;
};

QTEST_GUILESS_MAIN(tst_plugin_entry)
#include "tst_plugin_entry.moc"

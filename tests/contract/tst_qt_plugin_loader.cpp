// Qt's own loader takes the driver from Qt 6.5 on, the version on the driver's label; an older one
// reads the metadata but refuses to load, and the server's loader does without Qt's. The slots say
// what is expected of either.
//
// The label says "release" whatever the build type. On Linux Qt loads release and debug plugins
// alike, so that the word decides nothing; it is only shown.
#include <QJsonObject>
#include <QLibraryInfo>
#include <QPluginLoader>
#include <QPointer>
#include <QTest>
#include <QVersionNumber>

#include "drivers/driver/plugin_driver_interface_t.h"
#include "fakes/recording_logger_t.h"

namespace {

const QString path = QStringLiteral(PLUGIN_PATH);
const QString constructed = QStringLiteral("Constructor plugin plugin_driver_api v. 0.1");

bool qt_takes_it() {
    return QLibraryInfo::version() >= QVersionNumber(6, 5);
}

}  // namespace

class tst_qt_plugin_loader : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_metadata_is_read_without_loading();
    void the_driver_is_taken_or_refused_by_its_label();
    void the_instance_is_the_driver();
    void unloading_deletes_the_driver();
};

void tst_qt_plugin_loader::the_metadata_is_read_without_loading() {
    const fakes::recording_logger_t logger;
    const QPluginLoader loader(path);
    const QJsonObject metadata = loader.metaData();
    QVERIFY(!loader.isLoaded());
    QVERIFY(logger.lines().isEmpty());
    const QJsonObject expected{
        {QStringLiteral("IID"), QStringLiteral("org.kelma.torlan.interfaces")},
        {QStringLiteral("MetaData"),
         QJsonObject{{QStringLiteral("interface"),
                      QJsonObject{{QStringLiteral("port"), QStringLiteral("dev/xxxx")},
                                  {QStringLiteral("type"), QStringLiteral("TP")}}}}},
        {QStringLiteral("archlevel"), 0},
        {QStringLiteral("className"), QStringLiteral("plugin_driver_api_t")},
        {QStringLiteral("debug"), false},
        {QStringLiteral("version"), 0x060500}};
    QCOMPARE(metadata, expected);
}

void tst_qt_plugin_loader::the_driver_is_taken_or_refused_by_its_label() {
    QPluginLoader loader(path);
    QCOMPARE(loader.load(), qt_takes_it());
    QCOMPARE(loader.isLoaded(), qt_takes_it());
    if (!qt_takes_it()) {
        QCOMPARE(loader.instance(), nullptr);
        const QString refusal = QStringLiteral("uses incompatible Qt library. (6.5.0) [release]");
        QVERIFY2(loader.errorString().contains(refusal), qPrintable(loader.errorString()));
        return;
    }
    QVERIFY(loader.unload());
    QVERIFY(!loader.isLoaded());
}

void tst_qt_plugin_loader::the_instance_is_the_driver() {
    const fakes::recording_logger_t logger;
    QPluginLoader loader(path);
    QObject* instance = loader.instance();
    QCOMPARE(instance != nullptr, qt_takes_it());
    QCOMPARE(logger.count(constructed), qt_takes_it() ? 1 : 0);
    if (instance == nullptr) {
        return;
    }
    QCOMPARE(QByteArray(instance->metaObject()->className()),
             QByteArray("interfaces::plugin_driver_api_t"));
    QCOMPARE(instance->qt_metacast("org.kelma.torlan.interface"), static_cast<void*>(instance));
    QCOMPARE(instance->qt_metacast("org.kelma.torlan.interfaces"), nullptr);
    auto* driver = qobject_cast<interfaces::plugin_driver_interface_t*>(instance);
    QVERIFY(driver != nullptr);
    QVERIFY(driver->getCapability("IComunication") != nullptr);
    QCOMPARE(loader.instance(), instance);
    QCOMPARE(logger.count(constructed), 1);
    QVERIFY(loader.unload());
}

void tst_qt_plugin_loader::unloading_deletes_the_driver() {
    QPluginLoader loader(path);
    const QPointer<QObject> instance = loader.instance();
    QCOMPARE(instance.isNull(), !qt_takes_it());
    QCOMPARE(loader.unload(), qt_takes_it());
    QVERIFY(instance.isNull());
    QVERIFY(!loader.isLoaded());
}

QTEST_GUILESS_MAIN(tst_qt_plugin_loader)
#include "tst_qt_plugin_loader.moc"

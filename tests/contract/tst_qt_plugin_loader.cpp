// Qt's own loader takes the driver from Qt 6.5 on, the version on the driver's label; an older one
// refuses it by that label, and the server's loader does without Qt's.
#include <QJsonObject>
#include <QLibraryInfo>
#include <QPluginLoader>
#include <QTest>
#include <QVersionNumber>

#include "drivers/driver/plugin_driver_interface_t.h"
#include "fakes/recording_logger_t.h"

namespace {

const QString path = QStringLiteral(PLUGIN_PATH);

bool qt_takes_it() {
    return QLibraryInfo::version() >= QVersionNumber(6, 5);
}

}  // namespace

#define NEEDS_QT_6_5()                                                  \
    if (!qt_takes_it()) {                                               \
        QSKIP("Qt older than 6.5: refusing is tested in its own slot"); \
    }

class tst_qt_plugin_loader : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_qt_older_than_the_label_refuses_it() {
        if (qt_takes_it()) {
            QSKIP("Qt 6.5 or later: taking it is tested in the other slots");
        }
        QPluginLoader loader(path);
        QVERIFY(!loader.load());
        QVERIFY2(loader.errorString().contains(QStringLiteral("(6.5.0) [release]")),
                 qPrintable(loader.errorString()));
    }

    void the_metadata_is_read_without_loading() {
        NEEDS_QT_6_5();
        fakes::recording_logger_t logger;
        const QPluginLoader loader(path);
        const QJsonObject metadata = loader.metaData();
        QVERIFY(!loader.isLoaded());
        QCOMPARE(metadata.value(QStringLiteral("IID")).toString(),
                 QStringLiteral("org.kelma.torlan.interfaces"));
        QCOMPARE(metadata.value(QStringLiteral("className")).toString(),
                 QStringLiteral("plugin_driver_api_t"));
        const QJsonObject user = metadata.value(QStringLiteral("MetaData")).toObject();
        QCOMPARE(user,
                 (QJsonObject{{QStringLiteral("interface"),
                               QJsonObject{{QStringLiteral("port"), QStringLiteral("dev/xxxx")},
                                           {QStringLiteral("type"), QStringLiteral("TP")}}}}));
        QVERIFY(logger.lines().isEmpty());
    }

    void the_instance_is_the_driver() {
        NEEDS_QT_6_5();
        QPluginLoader loader(path);
        QVERIFY2(loader.load(), qPrintable(loader.errorString()));
        QObject* instance = loader.instance();
        QVERIFY2(instance != nullptr, qPrintable(loader.errorString()));
        QCOMPARE(QByteArray(instance->metaObject()->className()),
                 QByteArray("interfaces::plugin_driver_api_t"));
        QCOMPARE(instance->qt_metacast("org.kelma.torlan.interface"), static_cast<void*>(instance));
        auto* driver = qobject_cast<interfaces::plugin_driver_interface_t*>(instance);
        QVERIFY(driver != nullptr);
        QVERIFY(driver->getCapability("IComunication") != nullptr);
        QCOMPARE(QPluginLoader(path).instance(), instance);
        QVERIFY(loader.unload());
    }
};

QTEST_GUILESS_MAIN(tst_qt_plugin_loader)
#include "tst_qt_plugin_loader.moc"

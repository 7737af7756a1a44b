// A program that exports its own names lends the plugin the description of a type. It stays the
// program's when the plugin goes.
#include <QAssociativeIterable>
#include <QTest>

#include "contract/support/closable_plugin_t.h"

using support::closable_plugin_t;

class tst_unload_shared_type : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_programs_description_stays_registered() {
        const QMetaType own = QMetaType::fromType<QHash<QString, QString>>();
        QVERIFY(!QMetaType::fromName(own.name()).isValid());
        fakes::endpoint_thread_t endpoint;
        closable_plugin_t plugin;
        support::let_work(plugin, &endpoint);
        QCOMPARE(QMetaType::fromName(own.name()).iface(), own.iface());
        plugin.close();
        QVERIFY(!closable_plugin_t::is_mapped());
        QCOMPARE(QMetaType::fromName(own.name()).iface(), own.iface());
    }
};

QTEST_GUILESS_MAIN(tst_unload_shared_type)
#include "tst_unload_shared_type.moc"

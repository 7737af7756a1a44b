// The plugin's library goes when it is closed, whatever it has done, and begins anew when it is
// loaded again. This program has nothing of the host but the contract.
#include <QAssociativeIterable>
#include <QScopeGuard>
#include <QTest>
#include <array>

#include "contract/support/closable_plugin_t.h"

using support::closable_plugin_t;

namespace {

/// Registered meta types whose description is in no loaded library.
QList<int> dangling_types() {
    QList<int> ids;
    for (int id = QMetaType::User + 1; id < QMetaType::User + 1000; ++id) {
        Dl_info place = {};
        if (QMetaType::isRegistered(id) && dladdr(QMetaType(id).iface(), &place) == 0) {
            ids.append(id);
        }
    }
    return ids;
}

/// Sequence numbers of the next command source and configuration mode.
QList<int> next_numbers(const closable_plugin_t& _plugin) {
    return {*_plugin.symbol<int>("_ZN10interfaces22type_source_exec_cmd_t4maxIE"),
            *_plugin.symbol<int>("_ZN7utility25type_configuration_mode_t4maxIE")};
}

/// Makes and destroys a command source without a name.
void make_source(const closable_plugin_t& _plugin) {
    alignas(std::max_align_t) std::array<char, 64> place{};
    _plugin.symbol<void(void*)>("_ZN10interfaces22type_source_exec_cmd_tC1Ev")(place.data());
    _plugin.symbol<void(void*)>("_ZN10interfaces22type_source_exec_cmd_tD1Ev")(place.data());
}

}  // namespace

class tst_unload : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void cleanup() { QVERIFY(!closable_plugin_t::is_mapped()); }

    void it_goes_at_once() {
        closable_plugin_t plugin;
        QVERIFY(closable_plugin_t::is_mapped());
        plugin.close();
        QVERIFY(!closable_plugin_t::is_mapped());
    }

    void it_goes_after_its_root_object_was_made_and_deleted() {
        closable_plugin_t plugin;
        delete plugin.driver();
        plugin.close();
        QVERIFY(!closable_plugin_t::is_mapped());
    }

    void it_goes_after_work_data() {
        QTest::addColumn<bool>("has_endpoint");
        QTest::newRow("without an endpoint") << false;
        QTest::newRow("with an endpoint") << true;
    }
    void it_goes_after_work() {
        QFETCH(bool, has_endpoint);
        const auto endpoint = has_endpoint ? std::make_unique<fakes::endpoint_thread_t>() : nullptr;
        // The second time it works as well: nothing of the first is left that it could meet.
        for (qsizetype published = 0; published < 2; ++published) {
            closable_plugin_t plugin;
            support::let_work(plugin, endpoint.get());
            plugin.close();
            QVERIFY(!closable_plugin_t::is_mapped());
            QCOMPARE(dangling_types(), QList<int>());
            if (has_endpoint) {
                QVERIFY(!(*endpoint)->published().isEmpty());
                (*endpoint)->forget();
            }
        }
    }

    void it_begins_anew() {
        for (int round = 0; round < 2; ++round) {
            const closable_plugin_t plugin;
            QCOMPARE(next_numbers(plugin), QList<int>({9, 2}));
            make_source(plugin);
            QCOMPARE(next_numbers(plugin), QList<int>({10, 2}));
        }
    }

    void a_type_that_the_program_registered_first_stays() {
        const QMetaType own = QMetaType::fromType<QHash<QString, QString>>();
        qRegisterMetaType<QHash<QString, QString>>();
        const auto forget = qScopeGuard([own] {
            QMetaType::unregisterMetaType(own);
            const_cast<QtPrivate::QMetaTypeInterface*>(own.iface())->typeId.storeRelaxed(0);
        });
        fakes::endpoint_thread_t endpoint;
        closable_plugin_t plugin;
        support::let_work(plugin, &endpoint);
        plugin.close();
        QVERIFY(!closable_plugin_t::is_mapped());
        QCOMPARE(QMetaType::fromName(own.name()).iface(), own.iface());
    }
};

QTEST_GUILESS_MAIN(tst_unload)
#include "tst_unload.moc"

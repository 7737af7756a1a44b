// What packagers, the loader and other libraries see of the plugin's file: its name, what it needs,
// and that it can be unloaded.
#include <dlfcn.h>

#include <QRegularExpression>
#include <QTest>

#include "contract/support/elf_dynamic_t.h"
#include "contract/support/loaded_libraries.h"

using support::elf_dynamic_t;

namespace {

const QString plugin = QStringLiteral(PLUGIN_PATH);
const bool is_sanitized = !QByteArray(SANITIZERS).isEmpty();

}  // namespace

class tst_shared_object : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_plugin_has_its_shared_object_name() {
        QCOMPARE(elf_dynamic_t::read(plugin).soname, QByteArray("libplugin_driver_api.so"));
    }

    void the_plugin_needs_these_libraries_and_no_other() {
        const QByteArrayList expected{
            "libQt6Core.so", "libQt6Core5Compat.so",  "libc.so",          "libgcc_s.so", "libm.so",
            "libstdc++.so",  "libtorlan_contract.so", "libtorlan_http.so"};
        QByteArrayList needed;
        for (QByteArray library : elf_dynamic_t::read(plugin).needed) {
            library.truncate(library.indexOf(".so") + 3);
            // The loader itself on Arm, and what a sanitizer brings.
            if (!library.startsWith("ld-linux") && !(is_sanitized && library.endsWith("san.so"))) {
                needed.append(library);
            }
        }
        std::sort(needed.begin(), needed.end());
        QCOMPARE(needed, expected);
    }

    void no_symbol_is_unique_data() {
        QTest::addColumn<QString>("path");
        QTest::newRow("plugin") << plugin;
        QTest::newRow("contract") << QStringLiteral(CONTRACT_PATH);
        QTest::newRow("http") << QStringLiteral(HTTP_PATH);
    }
    void no_symbol_is_unique() {
        // A library with one is never unloaded, and shares the variable with every other copy.
        QFETCH(QString, path);
        const QList<elf_dynamic_t::symbol_t> symbols = elf_dynamic_t::read(path).symbols;
        QVERIFY(symbols.size() > 100);
        QByteArrayList unique;
        for (const elf_dynamic_t::symbol_t& symbol : symbols) {
            if (symbol.binding == STB_GNU_UNIQUE) {
                unique.append(symbol.name);
            }
        }
        QVERIFY2(unique.isEmpty(), unique.join('\n').constData());
    }

    void loading_it_brings_nothing_of_the_host() {
        // This program is linked with the contract and Qt's core and test libraries only.
        const QRegularExpression host(
            QStringLiteral("^lib(Qt6(Sql|Network)|mosquitto|spdlog|fmt|sqlite|torlan_)"));
        const QSet<QString> before = support::loaded_libraries();
        void* library = dlopen(PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
        QVERIFY2(library != nullptr, dlerror());
        const QSet<QString> after = support::loaded_libraries();
        QVERIFY(after.contains(QStringLiteral("libplugin_driver_api.so")));
        QStringList found;
        for (const QString& name : after) {
            if (host.match(name).hasMatch()) {
                found.append(name);
            }
        }
        std::sort(found.begin(), found.end());
        const QStringList ours{QStringLiteral("libtorlan_contract.so"),
                               QStringLiteral("libtorlan_http.so")};
        QCOMPARE(found, ours);
        QVERIFY(!before.contains(QStringLiteral("libtorlan_http.so")));
        QCOMPARE(dlclose(library), 0);
    }
};

QTEST_GUILESS_MAIN(tst_shared_object)
#include "tst_shared_object.moc"

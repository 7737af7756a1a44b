// The library's constants: built when it is loaded, in one order, and destroyed in reverse.
#include <cxxabi.h>
#include <dlfcn.h>

#include <QLibrary>
#include <QTest>
#include <array>
#include <cstdlib>
#include <memory>

namespace {

/// What registered its end, in the order of construction; plain, because that begins before main.
std::array<const void*, 4096> built;
std::size_t built_count = 0;

const QByteArrayList key_tree{
    "base",
    "trigger",
    "installation_o::base",
    "installation_o::installation_id",
    "installation_o::mqtt_devices",
    "installation_o::cloud_enabled",
    "installation_o::master_version",
    "installation_o::master",
    "installation_o::master_model",
    "installation_o::cloud_o::base",
    "installation_o::cloud_o::cloud_api_token",
    "statics_o::base",
    "statics_o::drdconf_o::base",
    "statics_o::drdconf_o::serial",
    "statics_o::device_o::base",
    "statics_o::device_o::product_code",
    "statics_o::device_o::product_name",
    "statics_o::device_o::version",
    "statics_o::torlan_o::base",
    "statics_o::torlan_o::comunication",
    "statics_o::torlan_o::zeroconf",
    "statics_o::torlan_o::comunication_o::base",
    "statics_o::torlan_o::comunication_o::global_o::base",
    "statics_o::torlan_o::comunication_o::global_o::installation_id",
    "statics_o::torlan_o::paths_o::base",
    "statics_o::torlan_o::paths_o::cacerts",
    "statics_o::torlan_o::paths_o::plugins",
    "statics_o::torlan_o::paths_o::logs",
    "statics_o::torlan_o::paths_o::client_communication",
    "statics_o::torlan_o::paths_o::system_ca_certs",
    "statics_o::torlan_o::urls_o::base",
    "statics_o::torlan_o::urls_o::cloud_service",
    "statics_o::torlan_o::urls_o::cloud_web",
    "statics_o::mosquitto_o::base",
    "statics_o::mosquitto_o::mqtt_cloud_url",
    "realtime_o::base",
    "realtime_o::torlan_o::base",
    "realtime_o::torlan_o::database",
    "realtime_o::torlan_o::database_o::base",
    "realtime_o::torlan_o::database_o::installation",
    "torlan_o::base",
    "torlan_o::database",
    "torlan_o::presencesimulation",
    "torlan_o::preserved_realtime",
    "torlan_o::baos_stick_params",
};

/// Inline in a header: built with the first source that includes it, whichever that is.
const QByteArrayList inline_constants{
    "utility::torlan_option_t::default_language",
    "utility::torlan_option_t::unknown_language",
};

QByteArrayList with_prefix(const QByteArray& _prefix, const QByteArrayList& _names) {
    QByteArrayList names;
    for (const QByteArray& name : _names) {
        names.append(_prefix + name);
    }
    return names;
}

}  // namespace

// Every constant with an end of its own calls this when it is built, so that it is destroyed when
// those that were built later are. The program's definition stands before the C library's.
extern "C" int __cxa_atexit(void (*_end)(void*), void* _object, void* _library) {
    using at_exit_t = int (*)(void (*)(void*), void*, void*);
    static const auto next = reinterpret_cast<at_exit_t>(dlsym(RTLD_NEXT, "__cxa_atexit"));
    if (built_count < built.size()) {
        built[built_count++] = _object;
    }
    return next(_end, _object, _library);
}

#ifdef __arm__
extern "C" int __aeabi_atexit(void* _object, void (*_end)(void*), void* _library) {
    return __cxa_atexit(_end, _object, _library);
}
#endif

class tst_constants : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() {
        const std::size_t before = built_count;
        QLibrary plugin(QStringLiteral(PLUGIN_PATH));
        QVERIFY2(plugin.load(), qPrintable(plugin.errorString()));
        QVERIFY(built_count < built.size());
        for (std::size_t i = before; i < built_count; ++i) {
            const QByteArray name = name_of(built[i]);
            if (!name.isEmpty()) {
                names.append(name);
            }
        }
    }

    void other_modules_find_the_key_tree() {
        QLibrary plugin(QStringLiteral(PLUGIN_PATH));
        QVERIFY2(plugin.load(), qPrintable(plugin.errorString()));
        for (const QByteArray& constant : key_tree) {
            QByteArray symbol = "_ZN7utility9cnfserver";
            for (const QByteArray& part : constant.split(':')) {
                symbol += part.isEmpty() ? QByteArray() : QByteArray::number(part.size()) + part;
            }
            QVERIFY2(plugin.resolve((symbol + 'E').constData()) != nullptr, constant.constData());
        }
    }

    void the_key_tree_is_built_in_its_order() {
        QCOMPARE(names_below("utility::cnfserver::"),
                 with_prefix("utility::cnfserver::", key_tree));
    }

    void nothing_of_another_source_is_built_before_the_key_tree() {
        QByteArrayList of_sources;
        for (const QByteArray& name : std::as_const(names)) {
            if (!inline_constants.contains(name)) {
                of_sources.append(name);
            }
        }
        QCOMPARE(of_sources.first(key_tree.size()), with_prefix("utility::cnfserver::", key_tree));
    }

    // Destroyed in reverse: a constant's end must find no map that still names it.
    void the_maps_end_is_registered_behind_the_last_constant() {
        QCOMPARE(names_below("utility::type_configuration_mode_t::"),
                 with_prefix("utility::type_configuration_mode_t::", {"http", "file", "map"}));
        QCOMPARE(names_below("interfaces::type_source_exec_cmd_t::"),
                 with_prefix("interfaces::type_source_exec_cmd_t::",
                             {"user", "system", "scene", "scheduler", "rule", "thermo",
                              "lockfunction", "presencesimulation", "unknown", "map"}));
    }

 private:
    /// The exported name of one of the plugin's own objects, else empty.
    static QByteArray name_of(const void* _object) {
        Dl_info info = {};
        if (dladdr(_object, &info) == 0 || info.dli_sname == nullptr ||
            !QByteArray(info.dli_fname).endsWith("/libplugin_driver_api.so")) {
            return {};
        }
        const std::unique_ptr<char, decltype(&std::free)> name(
            abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, nullptr), &std::free);
        return name != nullptr ? name.get() : info.dli_sname;
    }

    QByteArrayList names_below(const QByteArray& _prefix) const {
        QByteArrayList found;
        for (const QByteArray& name : names) {
            if (name.startsWith(_prefix)) {
                found.append(name);
            }
        }
        return found;
    }

    QByteArrayList names;  ///< of the plugin's constants, in the order in which they were built
};

QTEST_GUILESS_MAIN(tst_constants)
#include "tst_constants.moc"

// Every line that the plugin writes: people and programs that read the log go by these words.
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <vector>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "drivers/plugins/plugin_driver_api/plugin_driver_api_t.h"
#include "fakes/recording_logger_t.h"
#include "fakes/scripted_endpoint_t.h"
#include "kit/furnish.h"
#include "kit/settle.h"
#include "utility/utility_t.h"

using interfaces::data_api_elements_t;
using interfaces::mqtt_server_api_v1_t;
using interfaces::mqtt_server_t;
using interfaces::plugin_driver_api_t;
using utility::utility_t;

namespace {

QString latin(const char* _text) {
    return QString::fromLatin1(_text);
}

/// A driver with any identity, which can forget its endpoint.
class probe_t : public interfaces::plugin_driver_interface_t,
                public interfaces::WithCapabilities<probe_t, interfaces::IComunication> {
 public:
    probe_t(const char* _name, const char* _version, bool _use_topic = false)
        : plugin_driver_interface_t(latin(_name), latin(_version), _use_topic) {}
    void init_event_to_dispatcher(bool, QObject*) override {}
    bool finalize_database_initialization() override { return true; }
    void start(bool) override {}
    bool finalize_comunication_initialization() override { return true; }
    void init_comunication_event(bool) override {}

    void call() {
        Comunication([](comunication::protoserver_t*) {});
    }
    void call_and_forget_the_endpoint() {
        fakes::scripted_endpoint_t endpoint;
        init_comunication(&endpoint);
        call();
        comunication = nullptr;
        kit::settle();
    }
};

constexpr int any_line = -1;
constexpr const char* driver = "drivers/driver/plugin_driver_interface_t";
constexpr const char* capability = "drivers/driver/capability/plugin_driver_IComunication";
constexpr const char* root = "drivers/plugins/plugin_driver_api/restful_api_t";
constexpr const char* server = "drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t";
constexpr const char* handler =
    "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_base_t";
constexpr const char* collection = "drivers/plugins/plugin_driver_api/data/data_api_elements_t";
constexpr const char* element = "drivers/plugins/plugin_driver_api/data/data_api_element_object_t";
constexpr const char* utilities = "utility/utility_t";

struct case_t {
    const char* text;
    int level;
    const char* function;
    const char* source;  ///< below "server/"
    int line;            ///< any_line: free
    std::function<void()> produce;
};

void with_started_plugin(const std::function<void(plugin_driver_api_t&)>& _use) {
    fakes::memory_database_t home;
    kit::furnish(home);
    fakes::scripted_endpoint_t endpoint;
    plugin_driver_api_t plugin;
    plugin.init_database(home.get());
    plugin.init_comunication(&endpoint);
    plugin.start(true);
    kit::settle();
    _use(plugin);
    kit::settle();
}

void with_collection(
    const std::function<void(fakes::memory_database_t&, data_api_elements_t&)>& _use) {
    fakes::memory_database_t home;
    kit::furnish(home);
    data_api_elements_t elements(home.get(), nullptr);
    elements.setEnabled(true);
    _use(home, elements);
    kit::settle();
}

void read_broken_file() {
    const QTemporaryDir folder;
    QFile file(folder.filePath(latin("x.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{");
    file.close();
    utility_t::readFromFile(file.fileName());
}

void update(const QJsonValue& _target, const char* _path) {
    QJsonValue target = _target;
    utility_t::updateJsonValue(target, latin(_path), QJsonValue());
}

void message(const char* _version, const char* _type) {
    mqtt_server_t front(nullptr, nullptr);
    front.handlerMessage(latin(_version), {}, {}, latin(_type), {}, {}, true);
}

const std::vector<case_t> cases{
    {"Constructor plugin lights v. 2", 4, "plugin_driver_interface_t", driver, 36,
     [] { probe_t("lights", "2"); }},
    {"Error to init driver name ", 2, "plugin_driver_interface_t", driver, 39,
     [] { probe_t(" ", "2"); }},
    {"Error to init version ", 2, "plugin_driver_interface_t", driver, 41,
     [] { probe_t("lights", " "); }},
    {"[lights] Init lights VERSION 2 from: lights", 4, "init_database", driver, 177,
     [] { probe_t("lights", "2").init_database(nullptr); }},
    {"[lights] Error to set database is nullptr!", 0, "init_database", driver, 179,
     [] { probe_t("lights", "2").init_database(nullptr); }},
    {"TODO FS check if is correct", 3, "init_database", driver, 188,
     [] {
         fakes::memory_database_t home;
         probe_t("lights", "2").init_database(home.get());
     }},
    {"[ ] Driver id is no setted", 0, "init_database", driver, 191,
     [] {
         fakes::memory_database_t home;
         probe_t(" ", "2").init_database(home.get());
     }},
    {"[house/lights] Driver id: house/lights", 6, "init_database", driver, 194,
     [] {
         fakes::memory_database_t home;
         home.set_topic(latin("house"));
         probe_t("lights", "2", true).init_database(home.get());
     }},
    {"Error to set comunication is nullptr!", 2, "init_comunication", capability, 39,
     [] { probe_t("lights", "2").init_comunication(nullptr); }},
    {"Comunication is nullptr, operation skipped", 3, "Comunication", capability, 57,
     [] { probe_t("lights", "2").call(); }},
    {"Comunication is nullptr, operation skipped", 3, "operator()", capability, 64,
     [] { probe_t("lights", "2").call_and_forget_the_endpoint(); }},
    {"Constructor plugin plugin_driver_api v. 0.1", 4, "plugin_driver_interface_t", driver, 36,
     [] { plugin_driver_api_t(); }},
    {"Destructor plugin_driver_api", 4, "~plugin_driver_api_t", root, 17,
     [] { plugin_driver_api_t(); }},
    {"Driver id: installation/0001/plugin_driver_api", 6, "finalize_database_initialization", root,
     28, [] { with_started_plugin([](plugin_driver_api_t&) {}); }},
    {"API mqtt server is nullptr ... ", 2, "onComunicationAPIMessageIncoming", root, 107,
     [] {
         with_started_plugin([](plugin_driver_api_t& plugin) {
             delete plugin.findChild<mqtt_server_t*>();
             auto* endpoint = static_cast<fakes::scripted_endpoint_t*>(
                 static_cast<interfaces::IComunication&>(plugin).Comunication());
             endpoint->deliver(latin("v1"), {}, {}, latin("request"), {}, {}, false);
             kit::settle();
         });
     }},
    {"API topic malformed... not found api version v2", 2, "handlerMessage", server, any_line,
     [] { message("v2", "request"); }},
    {"API topic malformed... not found api version v1", 2, "handlerMessage", server, any_line,
     [] { message("v1", "command"); }},
    {"All API is disable", 3, "onUpdateElement", server, any_line,
     [] { mqtt_server_t(nullptr, nullptr).onUpdateElement(latin("x"), {}); }},
    {"All API is disable", 3, "onUpdateElements", server, any_line,
     [] { mqtt_server_t(nullptr, nullptr).onUpdateElements({latin("x")}); }},
    {"Internal error, missing response topic default!!!", 2, "response", handler, any_line,
     [] {
         mqtt_server_api_v1_t(nullptr, nullptr).response({}, {}, {}, {{latin("a"), 1}});
     }},
    {"Destructor v1", 4, "~mqtt_server_api_base_t", handler, any_line,
     [] { mqtt_server_api_v1_t(nullptr, nullptr); }},
    {"Reload data api data ...", 3, "operator()", collection, 24,
     [] {
         with_collection([](fakes::memory_database_t& home, data_api_elements_t& elements) {
             Q_EMIT home.persistent()->onPersistentChangeElements({});
             kit::settle();
             auto* wait = elements.findChild<QTimer*>();
             QSignalSpy over(wait, &QTimer::timeout);
             wait->setInterval(0);
             QVERIFY(over.wait());
         });
     }},
    {"Destructor ~data_api_elements_t", 4, "~data_api_elements_t", collection, 31,
     [] { with_collection([](fakes::memory_database_t&, data_api_elements_t&) {}); }},
    {"Update element Kitchen lamp item: i-lamp", 6, "update_value", element, 431,
     [] {
         with_collection([](fakes::memory_database_t& home, data_api_elements_t&) {
             home.set_item(latin("i-lamp"), latin("1"));
             kit::settle();
         });
     }},
    {"Functions id is empty", 6, "update_value", element, 435,
     [] {
         with_collection([](fakes::memory_database_t& home, data_api_elements_t&) {
             home.set_item(latin("i-temp"), latin("1"));
             kit::settle();
         });
     }},
    {"Error parsing file", 2, "readFromFile", utilities, 27, read_broken_file},
    {"File not exist ... /nowhere/x.json", 2, "readFromFile", utilities, 33,
     [] { utility_t::readFromFile(latin("/nowhere/x.json")); }},
    {"{\"a\":1}", 6, "printJsonObject", utilities, 79,
     [] {
         utility_t::printJsonObject({{latin("a"), 1}}, QJsonDocument::Compact);
     }},
    {"Value is udefined", 4, "printJson", utilities, 112,
     [] { utility_t::printJson(QJsonValue::Undefined, QJsonDocument::Compact); }},
    {"Error parsing file", 2, "QStringToQJsonObject", utilities, 135,
     [] { utility_t::QStringToQJsonObject(latin("{")); }},
    {"Error parsing file", 2, "QStringToQJSonArray", utilities, 145,
     [] { utility_t::QStringToQJSonArray(latin("{")); }},
    {"Error parsing file", 2, "QStringToQJsonValue", utilities, 156,
     [] { utility_t::QStringToQJsonValue(latin("{")); }},
    {"Remove: 1", 3, "updateJsonValue", utilities, 389,
     [] {
         update(QJsonArray{1, 2, 3}, "[1]");
     }},
    {"No: b", 3, "updateJsonValue", utilities, 400, [] { update(QJsonObject(), "b"); }},
    {"Remove: a", 3, "updateJsonValue", utilities, 411,
     [] {
         update(QJsonObject{{latin("a"), 1}}, "a");
     }},
};

}  // namespace

class tst_log_lines : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void lines_data() {
        QTest::addColumn<int>("index");
        for (std::size_t i = 0; i < cases.size(); ++i) {
            QTest::addRow("%s %s %d", cases[i].text, cases[i].function, cases[i].line)
                << static_cast<int>(i);
        }
    }
    void lines() {
        QFETCH(int, index);
        const case_t& one = cases[static_cast<std::size_t>(index)];
        fakes::recording_logger_t logger;
        one.produce();
        QStringList same_text;
        int found = 0;
        for (const auto& line : logger.lines()) {
            const bool line_fits = one.line == any_line ? line.line > 0 : line.line == one.line;
            const bool fits = line_fits && line.message == latin(one.text) &&
                              line.level == one.level && line.function == latin(one.function) &&
                              line.source == latin("server/") + latin(one.source);
            found += fits ? 1 : 0;
            same_text.append(QStringLiteral("\n  %1 level %2 %3 %4:%5")
                                 .arg(line.message)
                                 .arg(line.level)
                                 .arg(line.function, line.source)
                                 .arg(line.line));
        }
        QVERIFY2(found > 0, qPrintable(latin("written instead:") + same_text.join(QString())));
    }

    void without_a_logger_every_line_is_skipped() {
        QCOMPARE(utility::logs::classlogs::getInstance(), nullptr);
        for (const case_t& one : cases) {
            one.produce();
        }
    }
};

QTEST_GUILESS_MAIN(tst_log_lines)
#include "tst_log_lines.moc"

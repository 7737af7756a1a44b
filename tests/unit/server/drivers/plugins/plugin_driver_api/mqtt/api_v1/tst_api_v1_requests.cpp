#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/api_v1_requests.h"

#include <QJsonDocument>
#include <QTest>

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "kit/furnish.h"

namespace v1 = interfaces::v1;

namespace {

constexpr const char* lamp =
    R"({"functions":{"dim":{"value":"40"},"execute":{"value":"0"}},"name":"Kitchen lamp","type":1})";
constexpr const char* lamp_executes =
    R"({"functions":{"execute":{"value":"0"}},"name":"Kitchen lamp","type":1})";
constexpr const char* night =
    R"({"functions":{"execute":{"value":"false"}},"name":"Good night","type":8})";
constexpr const char* therm =
    R"({"functions":{"id_win":{"value":""},"thermo/id_actual":{"value":""},"thermo/setpoint":{"value":"20.5"}},"name":"Living room","type":17})";
constexpr const char* bad_payload = R"({"error":400,"message":"Non-compliant payload"})";
constexpr const char* bad_topic = R"({"error":400,"message":"Non-compliant topic"})";
constexpr const char* refused =
    R"({"error":401,"message":"Unauthorized user: configure user API on App"})";

QByteArray data(const QByteArray& _json) {
    return R"({"data":)" + _json + '}';
}

QJsonObject payload(const QByteArray& _text) {
    return QJsonDocument::fromJson(_text).object();
}

QByteArray text(const QJsonObject& _object) {
    return QJsonDocument(_object).toJson(QJsonDocument::Compact);
}

}  // namespace

class tst_api_v1_requests : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        home = std::make_unique<fakes::memory_database_t>();
        kit::furnish(*home);
        elements = std::make_unique<interfaces::data_api_elements_t>(home->get(), nullptr);
        elements->setEnabled(true);
    }

    void read_one_data() {
        columns();
        row("all functions", "alice", "e-lamp", "{}", data(lamp));
        row("read right", "bob", "e-lamp", "{}", data(lamp));
        row("scenario", "alice", "e-night", "{}", data(night));
        row("thermostat", "alice", "e-therm", "{}", data(therm));
        row("no grant", "bob", "e-night", "{}", refused);
        row("write only", "bob", "e-therm", "{}", refused);
        row("unknown user", "eve", "e-lamp", "{}", refused);
        row("unknown element", "alice", "unknown", "{}",
            R"({"error":404,"message":"Not found element unknown"})");
        row("unknown before malformed", "alice", "unknown", R"({"filters":{"types":[]}})",
            R"({"error":404,"message":"Not found element unknown"})");
        row("malformed before refused", "eve", "e-lamp", R"({"filters":{"functions":[]}})",
            bad_payload);
        row("filters no object", "alice", "e-lamp", R"({"filters":[]})", data(lamp));
        row("filters empty", "alice", "e-lamp", R"({"filters":{}})", data(lamp));
        row("function", "alice", "e-lamp", R"({"filters":{"functions":["execute"]}})",
            data(lamp_executes));
        row("function matches nothing", "alice", "e-lamp", R"({"filters":{"functions":["none"]}})",
            data(R"({"functions":{},"name":"Kitchen lamp","type":1})"));
        row("last segment", "alice", "e-therm", R"({"filters":{"functions":["id_actual"]}})",
            data(
                R"({"functions":{"thermo/id_actual":{"value":""}},"name":"Living room","type":17})"));
        row("full name is no segment", "alice", "e-therm",
            R"({"filters":{"functions":["thermo/setpoint"]}})",
            data(R"({"functions":{},"name":"Living room","type":17})"));
        row("type fits", "alice", "e-lamp", R"({"filters":{"types":[7,1]}})", data(lamp));
        row("type does not fit", "alice", "e-lamp", R"({"filters":{"types":[8]}})",
            R"({"error":409,"message":"Filter type error"})");
        row("type as text", "alice", "e-lamp", R"({"filters":{"types":["1"]}})",
            R"({"error":409,"message":"Filter type error"})");
        row("refused with a type filter", "bob", "e-night", R"({"filters":{"types":[1]}})",
            refused);
        row("refused with a function filter", "eve", "e-lamp",
            R"({"filters":{"functions":["none"]}})", refused);
    }
    void read_one() { check(v1::read_one, true); }

    void read_all_data() {
        columns();
        const QByteArray all = QByteArray(R"({"e-lamp":)") + lamp + R"(,"e-night":)" + night +
                               R"(,"e-therm":)" + therm + '}';
        row("everything readable", "alice", "", "{}", data(all));
        row("only what is readable", "bob", "", "{}",
            data(QByteArray(R"({"e-lamp":)") + lamp + '}'));
        row("unknown user", "eve", "", "{}", data("{}"));
        row("malformed", "alice", "", R"({"filters":{"types":7}})", bad_payload);
        row("malformed, unknown user", "eve", "", R"({"filters":{"functions":[]}})", bad_payload);
        row("filters no object", "bob", "", R"({"filters":7})",
            data(QByteArray(R"({"e-lamp":)") + lamp + '}'));
        row("types", "alice", "", R"({"filters":{"types":[8]}})",
            data(QByteArray(R"({"e-night":)") + night + '}'));
        row("functions", "bob", "", R"({"filters":{"functions":["execute"]}})",
            data(QByteArray(R"({"e-lamp":)") + lamp_executes + '}'));
        row("nothing left", "alice", "", R"({"filters":{"types":[99]}})", data("{}"));
        row("elements without a function left are out", "alice", "",
            R"({"filters":{"functions":["none"]}})", data("{}"));
        row("both", "alice", "", R"({"filters":{"functions":["execute"],"types":[8]}})",
            data(QByteArray(R"({"e-night":)") + night + '}'));
    }
    void read_all() { check(v1::read_all, false); }

    void write_one_data() {
        columns();
        row("accepted", "alice", "e-lamp", R"({"data":{"functions":{"execute":true}}})",
            R"({"data":{"functions":{"execute":"202"}}})", "i-lamp=1");
        row("two pairs in one call", "alice", "e-lamp",
            R"({"data":{"functions":{"execute":1,"dim":55.5}}})",
            R"({"data":{"functions":{"dim":"202","execute":"202"}}})", "i-dim=55.5;i-lamp=1");
        row("unknown function beside a known", "alice", "e-lamp",
            R"({"data":{"functions":{"execute":1,"none":1}}})",
            R"({"data":{"functions":{"execute":"202","none":"404"}}})", "i-lamp=1");
        row("write only", "bob", "e-therm", R"({"data":{"functions":{"thermo/setpoint":19}}})",
            R"({"data":{"functions":{"thermo/setpoint":"202"}}})", "i-set=19");
        row("last segment does not write", "bob", "e-therm",
            R"({"data":{"functions":{"setpoint":19}}})",
            R"({"data":{"functions":{"setpoint":"404"}}})");
        row("read only", "bob", "e-lamp", R"({"data":{"functions":{"execute":1}}})",
            R"({"data":{"error":401,"message":"Configure user on API on App"}})");
        row("unknown user", "eve", "e-lamp", R"({"data":{"functions":{"execute":1}}})",
            R"({"data":{"error":401,"message":"Configure user on API on App"}})");
        row("unknown element", "alice", "unknown", R"({"data":{"functions":{"execute":1}}})",
            R"({"error":404,"message":"Not found element unknown"})");
        row("malformed before unknown", "alice", "unknown", R"({"data":{"functions":{}}})",
            bad_payload);
        row("malformed before refused", "eve", "e-lamp", R"({"data":{}})", bad_payload);
        row("no data", "alice", "e-lamp", "{}", bad_payload);
    }
    void write_one() { check(v1::write_one, true); }

    void write_many_data() {
        columns();
        row("two", "alice", "",
            R"({"data":{"e-lamp":{"functions":{"dim":1}},"unknown":{"functions":{"x":1}}}})",
            R"({"data":{"e-lamp":{"functions":{"dim":"202"}},"unknown":{"error":404,"message":"Non found element unknown"}}})",
            "i-dim=1");
        row("refused stands inside data", "bob", "",
            R"({"data":{"e-lamp":{"functions":{"dim":1}},"e-therm":{"functions":{"thermo/setpoint":2}}}})",
            R"({"data":{"e-lamp":{"error":401,"message":"Configure user on API on App"},"e-therm":{"functions":{"thermo/setpoint":"202"}}}})",
            "i-set=2");
        row("empty data", "alice", "", R"({"data":{}})", data("{}"));
        row("one bad entry spoils all", "alice", "",
            R"({"data":{"e-lamp":{"functions":{"dim":1}},"e-x":{"functions":{}}}})", bad_payload);
        row("no data", "alice", "", "{}", bad_payload);
    }
    void write_many() { check(v1::write_many, false); }

    void a_scenario_is_asked_to_execute() {
        home->grant(QStringLiteral("u-alice"), QStringLiteral("e-night"), 3);
        elements->setEnabled(true);
        const auto write = [this](const char* value) {
            return text(v1::write_one(
                elements.get(),
                payload(R"({"data":{"functions":{"execute":)" + QByteArray(value) + "}}}"),
                captures("alice", "e-night", true)));
        };
        QCOMPARE(write("true"), QByteArray(R"({"data":{"functions":{"execute":"202"}}})"));
        QCOMPARE(home->scenary_requests.value(0),
                 (std::pair<QString, bool>(QStringLiteral("s-night"), true)));
        QCOMPARE(write("\"\""), QByteArray(R"({"data":{"functions":{"execute":"404"}}})"));
        QCOMPARE(home->scenary_requests.size(), 1);
    }

    void too_few_captured_texts_are_a_bad_topic() {
        const QJsonObject write = payload(R"({"data":{"functions":{"execute":1}}})");
        const QStringList two{QStringLiteral("whole"), QStringLiteral("alice")};
        QCOMPARE(text(v1::read_one(elements.get(), payload("{}"), two)), QByteArray(bad_topic));
        QCOMPARE(text(v1::write_one(elements.get(), write, two)), QByteArray(bad_topic));
        QCOMPARE(text(v1::write_one(elements.get(), payload("{}"), two)), QByteArray(bad_topic));
        QCOMPARE(text(v1::write_many(elements.get(), write, {two.first()})), QByteArray(bad_topic));
        QCOMPARE(text(v1::write_many(elements.get(), payload(R"({"data":{}})"), two)), data("{}"));
        QCOMPARE(text(v1::read_all(elements.get(), payload("{}"), {})), data("{}"));
    }

    void no_collection_counts_as_empty() {
        const QStringList one = captures("alice", "e-lamp", true);
        const QJsonObject write = payload(R"({"data":{"functions":{"execute":1}}})");
        const QByteArray unknown = R"({"error":404,"message":"Not found element e-lamp"})";
        QCOMPARE(text(v1::read_all(nullptr, payload("{}"), one)), data("{}"));
        QCOMPARE(text(v1::read_one(nullptr, payload("{}"), one)), unknown);
        QCOMPARE(text(v1::write_one(nullptr, write, one)), unknown);
        QCOMPARE(
            text(v1::write_many(nullptr, payload(R"({"data":{"e":{"functions":{"x":1}}}})"), one)),
            data(R"({"e":{"error":404,"message":"Non found element e"}})"));
    }

 private:
    using request_t = decltype(&v1::read_one);

    static QStringList captures(const QByteArray& _user, const QByteArray& _id, bool _one) {
        QStringList texts{QStringLiteral("the whole topic"), QString::fromLatin1(_user),
                          QStringLiteral("x")};
        if (_one) {
            texts.append(QString::fromLatin1(_id));
        }
        return texts;
    }
    static void columns() {
        for (const char* name : {"user", "id", "request", "answer", "asked"}) {
            QTest::addColumn<QByteArray>(name);
        }
    }
    static void row(const char* _name, const QByteArray& _user, const QByteArray& _id,
                    const QByteArray& _request, const QByteArray& _answer,
                    const QByteArray& _asked = {}) {
        QTest::newRow(_name) << _user << _id << _request << _answer << _asked;
    }
    void check(request_t _request, bool _one) {
        QFETCH(QByteArray, user);
        QFETCH(QByteArray, id);
        QFETCH(QByteArray, request);
        QFETCH(QByteArray, answer);
        QFETCH(QByteArray, asked);
        QCOMPARE(text(_request(elements.get(), payload(request), captures(user, id, _one))),
                 answer);
        QStringList writes;
        for (const auto& [item, value] : std::as_const(home->item_requests)) {
            writes.append(item + QLatin1Char('=') + value);
        }
        writes.sort();
        QCOMPARE(writes.join(QLatin1Char(';')).toLatin1(), asked);
    }

    std::unique_ptr<fakes::memory_database_t> home;
    std::unique_ptr<interfaces::data_api_elements_t> elements;
};

QTEST_GUILESS_MAIN(tst_api_v1_requests)
#include "tst_api_v1_requests.moc"

// torlan-bench: measures what the server costs against raw pairs of clients; see bench/README.md.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QJsonDocument>
#include <QSaveFile>

#include "bench/cases/change_cases.h"
#include "bench/cases/micro_cases.h"
#include "bench/cases/peer_cases.h"
#include "bench/cases/progress.h"
#include "bench/cases/push_cases.h"
#include "bench/cases/request_cases.h"
#include "bench/cases/start_cases.h"
#include "bench/cases/storm_cases.h"
#include "bench/load/client_loop_t.h"
#include "bench/measure/machine_facts.h"
#include "program/begin_program.h"
#include "program/exit_status_t.h"
#include "program/say.h"
#include "program/standard_options.h"
#include "program/stop_signals_t.h"

namespace {

using namespace bench;
using base::result_t;

struct case_t {
    QString name;
    result_t (*measure)(const run_plan_t& _plan, QJsonArray* _results);
};

const QList<case_t> cases{{"requests", measure_requests}, {"pushes", measure_pushes},
                          {"storms", measure_storms},     {"starts", measure_starts},
                          {"changes", measure_changes},   {"micro", measure_micro},
                          {"peer", measure_peer}};

struct options_t {
    run_plan_t plan;
    QString out;
    QString note;
    QString commit;
};

#ifdef NDEBUG
constexpr bool is_release = true;
#else
constexpr bool is_release = false;
#endif

void describe(QCommandLineParser* _parser) {
    _parser->setApplicationDescription("Measures what the server costs.");
    _parser->addOptions({{"out", "Where the results go, as JSON.", "FILE"},
                         {"rounds", "Rounds of each measurement (default: 9).", "N", "9"},
                         {"milliseconds", "Of one lane in one round (default: 400).", "N", "400"},
                         {"only", "Measure what holds this word.", "WORD"},
                         {"note", "A sentence about this run, for its readers.", "TEXT"},
                         {"commit", "What was built.", "ID"},
                         {"peer", "Folder where bench/peers is installed.", "DIR"},
                         {"smallest", "Everything once and as small as it goes; says nothing."}});
    torlan::add_standard_options(_parser);
}

options_t options_of(const QCommandLineParser& _parser) {
    options_t options;
    options.out = _parser.value("out");
    options.plan.peer = _parser.value("peer");
    options.note = _parser.value("note");
    options.commit = _parser.value("commit");
    options.plan.only = _parser.value("only");
    options.plan.rounds = _parser.value("rounds").toInt();
    options.plan.duration = std::chrono::milliseconds(_parser.value("milliseconds").toInt());
    options.plan.smallest = _parser.isSet("smallest");
    if (options.plan.smallest) {
        options.plan.rounds = 1;
        options.plan.duration = std::chrono::milliseconds(1);
    }
    return options;
}

result_t write(const QString& _path, const QJsonObject& _results) {
    QSaveFile file(_path);
    if (file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(_results).toJson()) > 0 &&
        file.commit()) {
        return {};
    }
    return result_t::failed(
        QStringLiteral("%1 cannot be written: %2.").arg(_path, file.errorString()));
}

result_t measure(const options_t& _options) {
    QJsonObject results{{"format", 1},
                        {"measured", QDateTime::currentDateTimeUtc().toString(Qt::ISODate)},
                        {"commit", _options.commit},
                        {"note", _options.note},
                        {"rounds", _options.plan.rounds},
                        {"smallest", _options.plan.smallest},
                        {"milliseconds", int(_options.plan.duration.count())},
                        {"machine", machine_facts()}};
    for (const case_t& each : cases) {
        QJsonArray found;
        if (!_options.plan.wants(each.name)) {
            continue;
        }
        const result_t measured = each.measure(_options.plan, &found);
        if (client_loop_t::is_stopped()) {
            return result_t::failed("stopped, nothing was written.");
        }
        if (!measured.is_ok()) {
            return measured;
        }
        results.insert(each.name, found);
    }
    return write(_options.out, results);
}

int fail(const QString& _sentence, int _status) {
    torlan::say(stderr, _sentence);
    return _status;
}

}  // namespace

int main(int _argc, char* _argv[]) {
    torlan::begin_program("torlan-bench");
    const QCoreApplication application(_argc, _argv);
    QCommandLineParser parser;
    describe(&parser);
    if (!parser.parse(QCoreApplication::arguments())) {
        return fail(parser.errorText(), torlan::status_usage);
    }
    const options_t options = options_of(parser);
    if (options.out.isEmpty() || options.plan.rounds < 1) {
        return fail("it takes --out FILE and --rounds of 1 at least.", torlan::status_usage);
    }
    if (!is_release && !options.plan.smallest) {
        return fail("this is a debug build, its figures say nothing; build the preset release.",
                    torlan::status_usage);
    }
    const torlan::stop_signals_t signals_;
    QObject::connect(&signals_, &torlan::stop_signals_t::stop_asked, &client_loop_t::stop);
    const result_t measured = measure(options);
    return measured.is_ok() ? torlan::status_done : fail(measured.error, torlan::status_failed);
}

#include "options_t.h"

#include <QCommandLineParser>
#include <QDir>
#include <QRegularExpression>

#include "program/option_numbers_t.h"
#include "program/standard_options.h"
#include "program/supervisor_link_t.h"
#include "request_limit.h"

namespace torlan {

namespace {

void describe(QCommandLineParser* _parser) {
    _parser->setApplicationDescription(
        QStringLiteral("Runs an installation: database, broker and drivers, on loopback."));
    _parser->addOptions({
        {QStringLiteral("data"), QStringLiteral("Data folder (default: var)."),
         QStringLiteral("DIR"), QStringLiteral("var")},
        {QStringLiteral("port"), QStringLiteral("Broker's port (default: 1883)."),
         QStringLiteral("N")},
        {QStringLiteral("ws-port"),
         QStringLiteral("Broker's WebSockets port; 0, the default: none."), QStringLiteral("N")},
        {QStringLiteral("config-port"),
         QStringLiteral("Port of the configuration server on 127.0.0.1 (default: 4321)."),
         QStringLiteral("N")},
        {QStringLiteral("config-wait"),
         QStringLiteral("Seconds to wait for it at the start, 0 to 3600 (default: 15)."),
         QStringLiteral("N")},
        {QStringLiteral("session-hours"),
         QStringLiteral("Hours that the broker keeps what it has for a client that is not there, "
                        "1 to 8760 (default: 168)."),
         QStringLiteral("N")},
        {QStringLiteral("plugins"), QStringLiteral("Folder of drivers (default: the build's)."),
         QStringLiteral("DIR")},
        {QStringLiteral("logs"), QStringLiteral("Folder of the log (default: logs in DATA)."),
         QStringLiteral("DIR")},
        {QStringLiteral("limit"),
         QStringLiteral("Change a limit of each API user; may be given more than once: ") +
             request_limit_names() + QLatin1Char('.'),
         QStringLiteral("NAME=N")},
        {QStringLiteral("knx"),
         QStringLiteral("KNX bus, knxd at URL: local:PATH or ip:HOST[:PORT] (default: none)."),
         QStringLiteral("URL")},
        {QStringLiteral("knx-rate"),
         QStringLiteral("Telegrams a second that are sent at most, 1 to 100 (default: 25)."),
         QStringLiteral("N")},
        {QStringLiteral("knx-read"),
         QStringLiteral("on (default) or off: ask the bus for values when it is there."),
         QStringLiteral("WORD")},
        {QStringLiteral("simulate"), QStringLiteral("Let temperatures drift.")},
        {QStringLiteral("log-level-std"),
         QStringLiteral("Highest level on standard output, 0 to 6 (default: 4)."),
         QStringLiteral("N")},
        {QStringLiteral("log-level-file"),
         QStringLiteral("Highest level in the log file, 0 to 6 (default: 5)."),
         QStringLiteral("N")},
        {QStringLiteral("log-size"),
         QStringLiteral("Size of a log file in megabytes, 1 to 1024 (default: 25)."),
         QStringLiteral("N")},
        {QStringLiteral("log-rotate"),
         QStringLiteral("Former log files that are kept, 0 to 1000 (default: 5)."),
         QStringLiteral("N")},
        {QStringLiteral("broker-program"), QStringLiteral("Mosquitto to run (default: installed)."),
         QStringLiteral("PATH")},
        {QStringLiteral("import"),
         QStringLiteral("Put the installation in FILE in the place of what is there."),
         QStringLiteral("FILE")},
        {QStringLiteral("sample"),
         QStringLiteral("Import FILE if there is no installation in the data folder yet."),
         QStringLiteral("FILE")},
        {QStringLiteral("console"),
         QStringLiteral("Address of the console, shown when ready; torlan-run gives it."),
         QStringLiteral("URL")},
        {QStringLiteral("user"),
         QStringLiteral("Run as the system account NAME, for good; only root can ask for it."),
         QStringLiteral("NAME")},
    });
    add_standard_options(_parser);
    add_supervisor_option(_parser);
}

/// Each port once: names the two options that share one.
base::result_t check_ports(const options_t& _options) {
    const auto shared = [](const char* _one, const char* _other, int _port) {
        return base::result_t::failed(
            QStringLiteral("%1 and %2 are both %3.")
                .arg(QLatin1String(_one), QLatin1String(_other), QString::number(_port)));
    };
    if (_options.port == _options.ws_port) {
        return shared("--port", "--ws-port", _options.port);
    }
    if (_options.port == _options.config_port) {
        return shared("--port", "--config-port", _options.port);
    }
    return _options.ws_port == _options.config_port
               ? shared("--ws-port", "--config-port", _options.ws_port)
               : base::result_t();
}

bool is_bus_url(const QString& _url) {
    static const QRegularExpression form(
        QStringLiteral("\\A(?:local:/?[^:]+|ip:[^:/\\s]+(?::[1-9][0-9]{0,4})?)\\z"));
    return form.match(_url).hasMatch() && _url.section(QLatin1Char(':'), 2).toUInt() <= 65535;
}

base::result_t read_bus(const QCommandLineParser& _parser, bus::bus_settings_t* _bus) {
    const QString read = _parser.isSet(QStringLiteral("knx-read"))
                             ? _parser.value(QStringLiteral("knx-read"))
                             : QStringLiteral("on");
    if (read != QLatin1String("on") && read != QLatin1String("off")) {
        return base::result_t::failed(
            QStringLiteral("--knx-read takes on or off, not \"%1\".").arg(read));
    }
    _bus->read = read == QLatin1String("on");
    if (!_parser.isSet(QStringLiteral("knx"))) {
        return {};
    }
    _bus->url = _parser.value(QStringLiteral("knx"));
    return is_bus_url(_bus->url)
               ? base::result_t()
               : base::result_t::failed(
                     QStringLiteral("--knx takes local:PATH or ip:HOST[:PORT], not \"%1\".")
                         .arg(_bus->url));
}

base::result_t read_numbers(const QCommandLineParser& _parser, options_t* _options) {
    option_numbers_t numbers(_parser);
    numbers.take("port", 1, 65535, &_options->port);
    numbers.take("ws-port", 0, 65535, &_options->ws_port);
    numbers.take("config-port", 1, 65535, &_options->config_port);
    numbers.take("config-wait", 0, 3600, &_options->config_wait);
    numbers.take("log-level-std", 0, 6, &_options->stdout_level);
    numbers.take("log-level-file", 0, 6, &_options->file_level);
    numbers.take("log-size", 1, 1024, &_options->log_size);
    numbers.take("log-rotate", 0, 1000, &_options->log_rotate);
    numbers.take("knx-rate", 1, 100, &_options->knx.telegrams_per_second);
    numbers.take("session-hours", 1, 8'760, &_options->session_hours);
    return numbers.result.is_ok() ? check_ports(*_options) : numbers.result;
}

base::result_of_t<options_t> read(const QCommandLineParser& _parser) {
    options_t options;
    if (const base::result_t numbers = read_numbers(_parser, &options); !numbers.is_ok()) {
        return numbers;
    }
    for (const QString& limit : _parser.values(QStringLiteral("limit"))) {
        if (const base::result_t set = set_request_limit(limit, &options.limits); !set.is_ok()) {
            return set;
        }
    }
    if (const base::result_t bus = read_bus(_parser, &options.knx); !bus.is_ok()) {
        return bus;
    }
    options.data = QDir(_parser.value(QStringLiteral("data"))).absolutePath();
    options.plugins = _parser.value(QStringLiteral("plugins"));
    options.logs = _parser.value(QStringLiteral("logs"));
    options.simulate = _parser.isSet(QStringLiteral("simulate"));
    options.broker_program = _parser.value(QStringLiteral("broker-program"));
    options.import_file = _parser.value(QStringLiteral("import"));
    options.console = _parser.value(QStringLiteral("console"));
    options.user = _parser.value(QStringLiteral("user"));
    options.supervisor = supervisor_descriptor(_parser);
    options.sample_file = _parser.value(QStringLiteral("sample"));
    return options;
}

}  // namespace

base::result_of_t<options_t> parse_options(const QStringList& _arguments) {
    QCommandLineParser parser;
    describe(&parser);
    const base::result_of_t<QString> shown = read_options(&parser, _arguments);
    if (!shown.is_ok()) {
        return shown;
    }
    if (!shown.value.isEmpty()) {
        options_t options;
        options.to_show = shown.value;
        return options;
    }
    return read(parser);
}

}  // namespace torlan

#include "options_t.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

namespace torlan {

namespace {

void describe(QCommandLineParser& _parser) {
    _parser.setApplicationDescription(
        QStringLiteral("Runs an installation: database, broker and drivers, on loopback."));
    _parser.addOptions({
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
        {QStringLiteral("plugins"),
         QStringLiteral("Folder of drivers (default: the settings', else the build's)."),
         QStringLiteral("DIR")},
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
    });
    _parser.addHelpOption();
    _parser.addVersionOption();
}

/// Takes the option's number if it was given; false and a sentence when it is none of the range.
template <class Number>
bool take(const QCommandLineParser& _parser, const char* _option, int _lowest, int _highest,
          Number* _value, QString* _error) {
    const QString name = QLatin1String(_option);
    if (!_parser.isSet(name)) {
        return true;
    }
    bool is_number = false;
    const int value = _parser.value(name).toInt(&is_number);
    if (!is_number || value < _lowest || value > _highest) {
        *_error = QStringLiteral("--%1 takes a number from %2 to %3, not \"%4\".")
                      .arg(name, QString::number(_lowest), QString::number(_highest),
                           _parser.value(name));
        return false;
    }
    *_value = static_cast<quint16>(value);
    return true;
}

/// Each port once: names the two options that share one.
QString check_ports(const options_t& _options) {
    const auto shared = [](const char* _one, const char* _other, int _port) {
        return QStringLiteral("%1 and %2 are both %3.")
            .arg(QLatin1String(_one), QLatin1String(_other), QString::number(_port));
    };
    if (_options.port == _options.ws_port) {
        return shared("--port", "--ws-port", _options.port);
    }
    if (_options.port == _options.config_port) {
        return shared("--port", "--config-port", _options.port);
    }
    return _options.ws_port == _options.config_port
               ? shared("--ws-port", "--config-port", _options.ws_port)
               : QString();
}

QString read_numbers(const QCommandLineParser& _parser, options_t* _options) {
    QString error;
    const bool taken = take(_parser, "port", 1, 65535, &_options->port, &error) &&
                       take(_parser, "ws-port", 0, 65535, &_options->ws_port, &error) &&
                       take(_parser, "config-port", 1, 65535, &_options->config_port, &error) &&
                       take(_parser, "config-wait", 0, 3600, &_options->config_wait, &error) &&
                       take(_parser, "log-level-std", 0, 6, &_options->stdout_level, &error) &&
                       take(_parser, "log-level-file", 0, 6, &_options->file_level, &error) &&
                       take(_parser, "log-size", 1, 1024, &_options->log_size, &error) &&
                       take(_parser, "log-rotate", 0, 1000, &_options->log_rotate, &error);
    return taken ? check_ports(*_options) : error;
}

}  // namespace

options_result_t parse_options(const QStringList& _arguments) {
    QCommandLineParser parser;
    describe(parser);
    options_result_t result;
    if (!parser.parse(_arguments)) {
        result.error = parser.errorText() + QLatin1Char('.');
    } else if (parser.isSet(QStringLiteral("help"))) {
        result.text = parser.helpText();
    } else if (parser.isSet(QStringLiteral("version"))) {
        result.text = QCoreApplication::applicationName() + QLatin1Char(' ') +
                      QCoreApplication::applicationVersion() + QLatin1Char('\n');
    } else if (!parser.positionalArguments().isEmpty()) {
        result.error = QStringLiteral("\"%1\" is not an option.")
                           .arg(parser.positionalArguments().constFirst());
    } else {
        options_t& options = result.options;
        result.error = read_numbers(parser, &options);
        options.data = QDir(parser.value(QStringLiteral("data"))).absolutePath();
        options.plugins = parser.value(QStringLiteral("plugins"));
        options.simulate = parser.isSet(QStringLiteral("simulate"));
        options.broker_program = parser.value(QStringLiteral("broker-program"));
        options.import_file = parser.value(QStringLiteral("import"));
        options.sample_file = parser.value(QStringLiteral("sample"));
    }
    return result;
}

}  // namespace torlan

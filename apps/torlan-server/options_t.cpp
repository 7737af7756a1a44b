#include "options_t.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

namespace torlan {

namespace {

/// Takes the option's number if it was given; false and a sentence when it is none of the range.
bool take_number(const QCommandLineParser& _parser, const char* _option, int _lowest, int _highest,
                 int* _value, QString* _error) {
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
    *_value = value;
    return true;
}

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
        {QStringLiteral("plugins"), QStringLiteral("Folder of drivers."), QStringLiteral("DIR"),
         QDir::cleanPath(QCoreApplication::applicationDirPath() +
                         QStringLiteral("/../lib/drivers"))},
        {QStringLiteral("simulate"), QStringLiteral("Let temperatures drift.")},
        {QStringLiteral("log-level-std"),
         QStringLiteral("Highest level on standard output, -1 to 6 (default: 4)."),
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

QString read_numbers(const QCommandLineParser& _parser, options_t* _options) {
    QString error;
    int port = _options->port;
    int ws_port = _options->ws_port;
    if (take_number(_parser, "port", 1, 65535, &port, &error) &&
        take_number(_parser, "ws-port", 0, 65535, &ws_port, &error) &&
        take_number(_parser, "log-level-std", -1, 6, &_options->stdout_level, &error) &&
        port == ws_port) {
        error = QStringLiteral("--port and --ws-port are both %1.").arg(port);
    }
    _options->port = static_cast<quint16>(port);
    _options->ws_port = static_cast<quint16>(ws_port);
    return error;
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

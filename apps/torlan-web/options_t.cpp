#include "options_t.h"

#include <QCommandLineParser>

#include "program/standard_options.h"
#include "program/supervisor_link_t.h"

namespace torlan {

namespace {

void describe(QCommandLineParser* _parser) {
    _parser->setApplicationDescription(
        QStringLiteral("Serves the console, a page for browsers, on loopback only."));
    add_standard_options(_parser);
    add_supervisor_option(_parser);
    _parser->addOptions({
        {QStringLiteral("pages"), QStringLiteral("Folder of the page's files."),
         QStringLiteral("DIR"), QStringLiteral("web")},
        {QStringLiteral("facts"),
         QStringLiteral("File of what the server tells the page; may be missing."),
         QStringLiteral("FILE")},
        {QStringLiteral("port"), QStringLiteral("The port; 0 takes a free one."),
         QStringLiteral("N"), QStringLiteral("4322")},
        {QStringLiteral("ws-port"), QStringLiteral("The broker's WebSockets port."),
         QStringLiteral("N"), QStringLiteral("9001")},
        {QStringLiteral("user"),
         QStringLiteral("Run as the system account NAME, for good; only root can ask for it."),
         QStringLiteral("NAME")},
    });
}

base::result_t take_port(const QCommandLineParser& _parser, const char* _name, uint _lowest,
                         quint16* _port) {
    const QString text = _parser.value(QLatin1String(_name));
    bool is_number = false;
    const uint number = text.toUInt(&is_number);
    if (!is_number || number < _lowest || number > 65535) {
        return base::result_t::failed(
            QStringLiteral("--%1 takes a number from %2 to 65535, not \"%3\".")
                .arg(QLatin1String(_name), QString::number(_lowest), text));
    }
    *_port = static_cast<quint16>(number);
    return {};
}

}  // namespace

base::result_of_t<options_t> parse_options(const QStringList& _arguments) {
    QCommandLineParser parser;
    describe(&parser);
    if (!parser.parse(_arguments)) {
        return base::result_t::failed(parser.errorText() + QLatin1Char('.'));
    }
    options_t options;
    options.to_show = standard_answer(parser);
    if (!options.to_show.isEmpty()) {
        return options;
    }
    if (!parser.positionalArguments().isEmpty()) {
        return base::result_t::failed(
            QStringLiteral("unknown argument %1.").arg(parser.positionalArguments().constFirst()));
    }
    base::result_t taken = take_port(parser, "port", 0, &options.port);
    if (taken.is_ok()) {
        taken = take_port(parser, "ws-port", 1, &options.ws_port);
    }
    if (!taken.is_ok()) {
        return taken;
    }
    options.pages = parser.value(QStringLiteral("pages"));
    options.facts = parser.value(QStringLiteral("facts"));
    options.supervisor = supervisor_descriptor(parser);
    options.user = parser.value(QStringLiteral("user"));
    return options;
}

}  // namespace torlan

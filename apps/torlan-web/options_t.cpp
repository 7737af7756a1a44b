#include "options_t.h"

#include <QCommandLineParser>

#include "program/option_numbers_t.h"
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

}  // namespace

base::result_of_t<options_t> parse_options(const QStringList& _arguments) {
    QCommandLineParser parser;
    describe(&parser);
    const base::result_of_t<QString> shown = read_options(&parser, _arguments);
    if (!shown.is_ok()) {
        return shown;
    }
    options_t options;
    options.to_show = shown.value;
    if (!options.to_show.isEmpty()) {
        return options;
    }
    option_numbers_t numbers(parser);
    numbers.take("port", 0, 65535, &options.port);
    numbers.take("ws-port", 1, 65535, &options.ws_port);
    if (!numbers.result.is_ok()) {
        return numbers.result;
    }
    options.pages = parser.value(QStringLiteral("pages"));
    options.facts = parser.value(QStringLiteral("facts"));
    options.supervisor = supervisor_descriptor(parser);
    options.user = parser.value(QStringLiteral("user"));
    return options;
}

}  // namespace torlan

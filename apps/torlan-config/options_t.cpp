#include "options_t.h"

#include <QCommandLineParser>

#include "program/option_numbers_t.h"
#include "program/standard_options.h"
#include "program/supervisor_link_t.h"

namespace torlan {

namespace {

void describe(QCommandLineParser* _parser) {
    _parser->setApplicationDescription(
        QStringLiteral("Serves the settings of this machine over HTTP, on loopback only."));
    add_standard_options(_parser);
    add_supervisor_option(_parser);
    _parser->addOptions({
        {QStringLiteral("file"), QStringLiteral("The settings; made when missing."),
         QStringLiteral("FILE"), QStringLiteral("settings.json")},
        {QStringLiteral("port"), QStringLiteral("The port; 0 takes a free one."),
         QStringLiteral("N"), QStringLiteral("4321")},
        {QStringLiteral("trigger"), QStringLiteral("Runs after a PUT with ?runtriggers=true."),
         QStringLiteral("PROGRAM")},
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
    if (!numbers.result.is_ok()) {
        return numbers.result;
    }
    options.file = parser.value(QStringLiteral("file"));
    options.supervisor = supervisor_descriptor(parser);
    options.user = parser.value(QStringLiteral("user"));
    options.trigger = parser.value(QStringLiteral("trigger"));
    return options;
}

}  // namespace torlan

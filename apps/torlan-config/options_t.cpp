#include "options_t.h"

#include <QCommandLineParser>

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
    if (!parser.parse(_arguments)) {
        return base::result_t::failed(parser.errorText());
    }
    options_t options;
    options.to_show = standard_answer(parser);
    if (!options.to_show.isEmpty()) {
        return options;
    }
    const QString port = parser.value(QStringLiteral("port"));
    bool is_port = false;
    options.port = port.toUShort(&is_port);
    if (!is_port) {
        return base::result_t::failed(QStringLiteral("--port %1 is not a port").arg(port));
    }
    if (!parser.positionalArguments().isEmpty()) {
        return base::result_t::failed(
            QStringLiteral("unknown argument %1").arg(parser.positionalArguments().constFirst()));
    }
    options.file = parser.value(QStringLiteral("file"));
    options.supervisor = supervisor_descriptor(parser);
    options.user = parser.value(QStringLiteral("user"));
    options.trigger = parser.value(QStringLiteral("trigger"));
    return options;
}

}  // namespace torlan

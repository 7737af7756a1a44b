#include "options_t.h"

#include <QCommandLineParser>

#include "program/standard_options.h"
#include "program/supervisor_link_t.h"

namespace torlan {

base::result_of_t<options_t> parse_options(const QStringList& _arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Plays the devices of an installation on a KNX bus, to try it without any."));
    add_standard_options(&parser);
    add_supervisor_option(&parser);
    parser.addOptions({
        {QStringLiteral("data"), QStringLiteral("Folder of the installation (default: var)."),
         QStringLiteral("DIR"), QStringLiteral("var")},
        {QStringLiteral("knx"),
         QStringLiteral("knxd at URL: local:PATH or ip:HOST[:PORT]; other devices there hear it."),
         QStringLiteral("URL")},
    });
    if (!parser.parse(_arguments)) {
        return base::result_t::failed(parser.errorText());
    }
    options_t options;
    options.to_show = standard_answer(parser);
    options.data = parser.value(QStringLiteral("data"));
    options.url = parser.value(QStringLiteral("knx"));
    options.supervisor = supervisor_descriptor(parser);
    if (!options.to_show.isEmpty()) {
        return options;
    }
    if (!parser.positionalArguments().isEmpty()) {
        return base::result_t::failed(QStringLiteral("Unknown argument '%1'.")
                                          .arg(parser.positionalArguments().constFirst()));
    }
    return options.url.isEmpty() ? base::result_of_t<options_t>(base::result_t::failed(
                                       QStringLiteral("--knx URL is needed.")))
                                 : options;
}

}  // namespace torlan

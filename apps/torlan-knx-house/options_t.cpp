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
    const base::result_of_t<QString> shown = read_options(&parser, _arguments);
    if (!shown.is_ok()) {
        return shown;
    }
    options_t options;
    options.to_show = shown.value;
    if (!options.to_show.isEmpty()) {
        return options;
    }
    options.data = parser.value(QStringLiteral("data"));
    options.url = parser.value(QStringLiteral("knx"));
    options.supervisor = supervisor_descriptor(parser);
    return options.url.isEmpty() ? base::result_of_t<options_t>(base::result_t::failed(
                                       QStringLiteral("--knx URL is needed.")))
                                 : options;
}

}  // namespace torlan

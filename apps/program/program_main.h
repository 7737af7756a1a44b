#pragma once

#include <QCoreApplication>

#include "base/result_t.h"
#include "program/begin_program.h"
#include "program/exit_status_t.h"
#include "program/say.h"
#include "program/standard_streams.h"

namespace torlan {

/// main() of a program that goes on until it is asked to end: reads its command line with
/// @p _parse, answers --help and --version or a wrong call, or gives what @p _run gives.
/// options_t has a text `to_show`.
template <class options_t>
int program_main(const char* _name, int _argc, char* _argv[],
                 base::result_of_t<options_t> (*_parse)(const QStringList&),
                 int (*_run)(const options_t&)) {
    const QString name = QLatin1String(_name);
    begin_program(name);
    const QCoreApplication application(_argc, _argv);
    const base::result_of_t<options_t> options = _parse(QCoreApplication::arguments());
    if (!options.is_ok()) {
        say(stderr, options.error + QStringLiteral(" See %1 --help.").arg(name));
        return status_usage;
    }
    if (!options.value.to_show.isEmpty()) {
        write_text(stdout, options.value.to_show);
        return status_done;
    }
    wait_for_no_reader();
    return _run(options.value);
}

}  // namespace torlan

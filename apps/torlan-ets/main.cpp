#include <QCoreApplication>

#include "conversion.h"
#include "options_t.h"
#include "program/begin_program.h"
#include "program/exit_status_t.h"
#include "program/say.h"
#include "program/standard_streams.h"

namespace torlan {

namespace {

int finish(const base::result_t& _done) {
    if (_done.is_ok()) {
        return status_done;
    }
    say(stderr, _done.error);
    return status_failed;
}

}  // namespace

}  // namespace torlan

int main(int _argc, char* _argv[]) {
    using namespace torlan;
    begin_program(QStringLiteral("torlan-ets"));
    const QCoreApplication application(_argc, _argv);
    const base::result_of_t<options_t> options = parse_options(QCoreApplication::arguments());
    if (!options.is_ok()) {
        say(stderr, options.error + QStringLiteral(" See torlan-ets --help."));
        return status_usage;
    }
    if (!options.value.to_show.isEmpty()) {
        return finish(write_output(options.value.to_show.toUtf8()));
    }
    return finish(convert(options.value));
}

#include <QCoreApplication>

#include "command_line_t.h"
#include "program/begin_program.h"
#include "program/exit_status_t.h"
#include "program/say.h"
#include "program/standard_streams.h"

namespace torlan {

namespace {

int finish(const QString& _error) {
    if (_error.isEmpty()) {
        return status_done;
    }
    say(stderr, _error);
    return status_failed;
}

}  // namespace

}  // namespace torlan

int main(int _argc, char* _argv[]) {
    using namespace torlan;
    begin_program(QStringLiteral("torlanctl"));
    const QCoreApplication application(_argc, _argv);
    command_line_t line;
    const base::result_t parsed = line.parse(QCoreApplication::arguments());
    if (!parsed.is_ok()) {
        say(stderr, parsed.error + QStringLiteral(" See torlanctl --help."));
        return status_usage;
    }
    if (!line.to_show().isEmpty()) {
        return finish(write_output(line.to_show().toUtf8()).error);
    }
    const int status = finish(line.run().error);
    if (status != status_done) {
        return status;
    }
    if (const base::result_t followed = line.follow_up(); !followed.is_ok()) {
        say(stderr, followed.error);
        return status_stored;
    }
    return status_done;
}

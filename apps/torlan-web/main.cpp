#include <QCoreApplication>

#include "options_t.h"
#include "page_server_t.h"
#include "program/begin_program.h"
#include "program/exit_status_t.h"
#include "program/loopback_service.h"
#include "program/say.h"
#include "program/standard_streams.h"

namespace torlan {

namespace {

int serve(const options_t& _options) {
    page_server_t server(_options.facts, _options.ws_port);
    return serve_loopback(_options.user, _options.supervisor, [&]() -> base::result_of_t<quint16> {
        const base::result_t started = server.start(_options.pages, _options.port);
        return started.is_ok() ? server.serverPort() : base::result_of_t<quint16>(started);
    });
}

}  // namespace

}  // namespace torlan

int main(int _argc, char* _argv[]) {
    using namespace torlan;
    begin_program(QStringLiteral("torlan-web"));
    const QCoreApplication application(_argc, _argv);
    const base::result_of_t<options_t> options = parse_options(QCoreApplication::arguments());
    if (!options.is_ok()) {
        say(stderr, options.error);
        return status_usage;
    }
    if (!options.value.to_show.isEmpty()) {
        write_text(stdout, options.value.to_show);
        return status_done;
    }
    wait_for_no_reader();
    return serve(options.value);
}

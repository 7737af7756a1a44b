#include "config_server_t.h"
#include "options_t.h"
#include "program/loopback_service.h"
#include "program/program_main.h"

namespace torlan {

namespace {

int serve(const options_t& _options) {
    config_server_t server(_options.trigger);
    return serve_loopback(_options.user, _options.supervisor, [&]() -> base::result_of_t<quint16> {
        const base::result_t started = server.start(_options.file, _options.port);
        if (started.is_ok() && server.is_file_new()) {
            say(stderr, QStringLiteral("made %1 with empty settings").arg(_options.file));
        }
        return started.is_ok() ? server.port() : base::result_of_t<quint16>(started);
    });
}

}  // namespace

}  // namespace torlan

int main(int _argc, char* _argv[]) {
    using namespace torlan;
    return program_main("torlan-config", _argc, _argv, parse_options, serve);
}

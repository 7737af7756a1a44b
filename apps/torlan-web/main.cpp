#include "options_t.h"
#include "page_server_t.h"
#include "program/loopback_service.h"
#include "program/program_main.h"

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
    return program_main("torlan-web", _argc, _argv, parse_options, serve);
}

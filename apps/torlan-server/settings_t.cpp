#include "settings_t.h"

#include "client_folder.h"
#include "client_settings_t.h"
#include "config_port.h"
#include "http/http_t.h"
#include "utility/cnfserver.h"
#include "utility/http_read_config_server_t.h"
#include "utility/torlan_option_t.h"
#include "utility/utility_t.h"

namespace torlan {

using utility::cnfserver;
using paths_o = cnfserver::statics_o::torlan_o::paths_o;

settings_t::settings_t(const options_t& _options, QObject* _parent)
    : QObject(_parent),
      options(_options),
      address(QStringLiteral("http://127.0.0.1:%1/").arg(options.config_port)),
      singletons(options),
      document(options.config_port, options.config_wait) {
    connect(&document, &document_wait_t::waiting, this, &settings_t::waiting);
}

settings_t::~settings_t() = default;

base::result_t settings_t::read() {
    if (!http_t::map_base(cnfserver::base, options.config_port)) {
        return base::result_t::failed(
            QStringLiteral("The configuration server cannot be at %1.").arg(address));
    }
    const base::result_of_t<QJsonObject> found = document.run();
    if (!found.is_ok()) {
        return found;
    }
    const auto text_at = [&found](const QString& _path) {
        return utility::utility_t::getJsonObjValue(found.value, _path).toString();
    };
    // Before the reading, which writes the client file into the folder.
    if (const base::result_t made =
            make_client_folder(text_at(paths_o::client_communication.toString()));
        !made.is_ok()) {
        return made;
    }
    client_settings_t clients(found.value, options.port, options.ws_port);
    clients.tell(text_at(cnfserver::installation_o::installation_id.toString()));
    if (!utility::http_read_config_server_t::createInstance(nullptr)->read_configuration()) {
        return base::result_t::failed(
            QStringLiteral("The configuration server at %1 has no settings.").arg(address));
    }
    if (const base::result_t judged = judge_config_port(options.config_port); !judged.is_ok()) {
        return judged;
    }
    // A new id stands in the client file already; now also where clients read the settings.
    clients.tell(utility::torlan_option_t::InstallationId());
    return {};
}

}  // namespace torlan

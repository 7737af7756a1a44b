#include "client_settings_t.h"

#include <QJsonDocument>
#include <utility>

#include "http/http_t.h"
#include "logs/log_line.h"
#include "utility/cnfserver.h"
#include "utility/utility_t.h"

namespace torlan {

using utility::cnfserver;
using utility::utility_t;
using torlan_o = cnfserver::statics_o::torlan_o;

namespace {
constexpr const char* source = "apps/torlan-server/client_settings_t";
}

client_settings_t::client_settings_t(QJsonObject _document, quint16 _port, quint16 _ws_port)
    : document(std::move(_document)),
      broker{{QStringLiteral("host"), QStringLiteral("127.0.0.1")},
             {QStringLiteral("port"), _port}} {
    if (_ws_port != 0) {
        broker.insert(QStringLiteral("ws_port"), _ws_port);
    }
}

QList<client_settings_t::change_t> client_settings_t::changes(
    const QString& _installation_id) const {
    const QString path = torlan_o::comunication.toString();
    const QJsonValue told = utility_t::getJsonObjValue(document, path);
    QList<change_t> different;
    if (!told.isObject()) {
        return different;
    }
    if (told[QLatin1String("mqtt")].toObject() != broker) {
        different.append({path + QStringLiteral("mqtt"), broker});
    }
    const QJsonValue global = told[QLatin1String("global")];
    if (global.isObject() && !_installation_id.trimmed().isEmpty() &&
        global[QLatin1String("installation_id")] != _installation_id) {
        different.append(
            {torlan_o::comunication_o::global_o::installation_id.toString(), _installation_id});
    }
    return different;
}

void client_settings_t::tell(const QString& _installation_id) {
    QJsonDocument changed(document);
    for (const change_t& change : changes(_installation_id)) {
        if (put(change)) {
            utility_t::updateJsonValue(changed, change.path, change.value);
        }
    }
    document = changed.object();
}

bool client_settings_t::put(const change_t& _change) const {
    const httpresponse_t response = http_t(cnfserver::base, false).put(_change.path, _change.value);
    if (response.getError() != 0) {
        utility::log_line(QStringLiteral("The settings do not take %1: %2")
                              .arg(_change.path, response.getErrorText()),
                          2, __func__, source, __LINE__);
    }
    return response.getError() == 0;
}

}  // namespace torlan

#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>

namespace torlan {

/// What the settings tell local programs, which read that part of them as the client file: the
/// broker's address and the installation id. Kept up to date on the configuration server.
class client_settings_t {
 public:
    /// One value to be put into the settings.
    struct change_t {
        QString path;
        QJsonValue value;
        bool operator==(const change_t&) const = default;
    };

    /// @param _document the settings, as the configuration server has them
    /// @param _ws_port 0: no WebSockets
    client_settings_t(QJsonObject _document, quint16 _port, quint16 _ws_port);

    /// Puts what differs; what the server does not take is a line in the log.
    void tell(const QString& _installation_id);

    /// What differs. Nothing when the settings have no such part; a blank id is not told.
    QList<change_t> changes(const QString& _installation_id) const;

 private:
    bool put(const change_t& _change) const;

    QJsonObject document;
    QJsonObject broker;
};

}  // namespace torlan

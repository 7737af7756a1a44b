#pragma once

#include <QJsonObject>

#include "api/api_session_t.h"
#include "doctor/finding_t.h"

/// What is looked at. Nothing is changed; no call waits longer than some seconds.
namespace torlan {

/// The data folder: who can change and read what is in it, settings, database.
findings_t folder_findings(const QString& _data);

/// Room for data and logs, the clock. @p _status of the server that runs; empty: none does.
findings_t machine_findings(const QString& _data, const QJsonObject& _status);

/// The server that runs: its state, who listens on its ports, versions.
findings_t server_findings(const QJsonObject& _status);

/// Whom the broker at an address lets in that it must not.
findings_t sign_in_findings(const QString& _host, quint16 _port);

/// What the broker lets a user do that it must not.
findings_t rights_findings(const api_account_t& _account);

}  // namespace torlan

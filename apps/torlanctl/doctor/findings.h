#pragma once

#include <QJsonObject>

#include "doctor/finding_t.h"

/// How findings are shown. Pure.
namespace torlan {

/// The worst there is; what could not be looked at is no worse than ok.
health_t verdict_of(const findings_t& _findings);

/// "warning  disk      ..."
QString finding_text(const finding_t& _finding);
QJsonObject finding_json(const finding_t& _finding);

/// "1 problem, 2 warnings, 1 not checked" or "Everything is well, ..."
QString verdict_text(const findings_t& _findings);
QJsonObject verdict_json(const findings_t& _findings);

}  // namespace torlan

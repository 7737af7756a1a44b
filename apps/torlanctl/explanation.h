#pragma once

#include <QJsonObject>
#include <QString>

#include "store/overview_t.h"

namespace torlan {

/// What a user may do with an element: rights, topics, what the broker lets pass, what a request is
/// answered with. By the rules that decide it. Pure.
QJsonObject explanation(const database::store::overview_t::access_t& _access);

/// The same as people read it.
QString explanation_text(const QJsonObject& _explanation);

}  // namespace torlan

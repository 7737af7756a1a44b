#pragma once

#include <QString>

#include "base/result_t.h"
#include "endpoint/request_limits_t.h"

namespace torlan {

/// Sets one limit of API users as a command line names it: "NAME=NUMBER".
base::result_t set_request_limit(const QString& _text, comunication::request_limits_t* _limits);

/// For the help text: each name and what holds when nothing is given.
QString request_limit_names();

}  // namespace torlan

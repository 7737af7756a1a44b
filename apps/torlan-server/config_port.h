#pragma once

#include <QtGlobal>

#include "base/result_t.h"

namespace torlan {

/// Who listens on the configuration port of 127.0.0.1: a failure when anybody but our own user and
/// root does. Every local user may take a free port, and what the settings say is what the server
/// does, so this is asked before a question goes there and again when the answer is here.
base::result_t judge_config_port(quint16 _port);

}  // namespace torlan

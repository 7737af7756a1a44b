#pragma once

#include "api/api_session_t.h"
#include "line/call_t.h"
#include "line/option_t.h"

namespace torlan {

/// What every command of an API user takes.
const QList<option_t>& account_options();

/// Who a call asks as, and where: what it says, or else the broker of the server that runs on its
/// data folder. The password is read last.
outcome_t read_account(const call_t& _call, api_account_t* _account);

}  // namespace torlan

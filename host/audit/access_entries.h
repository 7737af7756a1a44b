#pragma once

#include <QList>

#include "accounts/broker_account_t.h"
#include "audit/entry_t.h"
#include "live/grant_change_t.h"

/// What changed in the database about who may do what; who changed it, the database does not tell.
/// Pure functions.
namespace audit {

/// Users that came, went or were renamed, and passwords that are others now; no hash is in it.
QList<entry_t> account_entries(const QList<accounts::broker_account_t>& _before,
                               const QList<accounts::broker_account_t>& _after, qint64 _time);

entry_t grant_entry(const database::live::grant_change_t& _change, qint64 _time);

}  // namespace audit

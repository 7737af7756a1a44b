#pragma once

#include <QList>
#include <QString>

#include "base/result_t.h"

/// What the process may do on this machine beyond its files. Called before the process has a second
/// thread: capabilities are a thread's own.
namespace torlan {

bool is_root();

/// Gives everything of root up for the system account @p _name, with its groups; for good. Whoever
/// runs as that account already stays it.
base::result_t become_account(const QString& _name);

/// Of root's capabilities only these (CAP_...) stay, for this process and all it starts, as far as
/// it had them. No effect for others.
base::result_t keep_capabilities(const QList<int>& _kept);

/// What programs do with their option --user: become_account(), or, for root without one,
/// keep_capabilities() and @p _told is a sentence that says so; else nothing.
base::result_t give_up_privileges(const QString& _account, const QList<int>& _kept, QString* _told);

}  // namespace torlan

#pragma once

#include <QStringList>

/// A host that tells its API users apart. A test that has choosy_users.cpp among its sources reads
/// users by these rules instead of the contract library's, which every user passes:
///
///     id "barred-..."   may not sign in
///     id "v2-..."       uses version 2 of the API only, everybody else version 1 only
namespace kit {

/// What users were asked for since the last call, in order: "ids 1", "names 0", "names v1 1".
QStringList take_user_questions();

}  // namespace kit

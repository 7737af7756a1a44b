#pragma once

#include <QList>

#include "base/result_t.h"
#include "installation/installation_t.h"
#include "line/call_t.h"
#include "line/option_t.h"
#include "store/kind_t.h"

/// What "add" and "set" make of a thing by their options and words. What comes of it is judged by
/// the rules of documents.
namespace torlan {

QList<option_t> edit_options(database::store::kind_t _kind);

/// @param _thing holds the thing alone
base::result_t edit_thing(const call_t& _call, database::store::kind_t _kind, const QString& _id,
                          database::installation::installation_t* _thing);

}  // namespace torlan

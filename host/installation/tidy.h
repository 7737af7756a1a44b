#pragma once

#include "installation/installation_t.h"

/// What a database holds that no document may hold: anybody can write into it with an SQL shell.
/// Each function takes it out and returns what it did, one text for each thing, such as "elements/a
/// b is left out: the identifier must be ...".
namespace database::installation {

/// Entries with a name against the rule are left out, texts are cleaned, grants that are none are
/// left out. May be given a part of an installation: what an entry refers to is not looked at.
QStringList tidy_entries(installation_t* _part);

/// All of that; users whose password hash the broker would not take and what refers to nothing are
/// left out too: what write_document() makes of the rest can be read back.
QStringList tidy_whole(installation_t* _whole);

}  // namespace database::installation

#pragma once

#include <QString>

#include "audit/entry_t.h"

namespace audit {

/// An entry as one line for people, without a line end: time, user, what, result, and in brackets
/// what else is known. Nothing in it steers a terminal. Pure.
QString people_text(const entry_t& _entry);

}  // namespace audit

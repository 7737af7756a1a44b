#pragma once

#include <QString>

namespace torlan {

/// The settings name folders for drivers and logs, too, which whoever may change settings could
/// turn anywhere: a line in the log when another one is used.
/// @param _what the beginning of the sentence, e.g. "The log is"
void tell_other_folder(const QString& _what, const QString& _used, const QString& _settings);

}  // namespace torlan

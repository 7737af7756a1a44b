#pragma once

#include <QString>

namespace process {

class file_lock_t;

/// Who holds a lock that is held, for a sentence: "process 24 (torlan-server)".
QString holder_text(const file_lock_t& _lock);

}  // namespace process

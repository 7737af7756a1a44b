#pragma once

#include <QtGlobal>

namespace bench {

/// Processor time of a process and all of its threads so far, in microseconds; -1: there is none.
double processor_us(qint64 _process);

/// Its resident memory and the most that it was, in bytes; -1: there is none.
qint64 resident_bytes(qint64 _process);
qint64 peak_bytes(qint64 _process);

}  // namespace bench

#pragma once

#include <QByteArray>
#include <QString>
#include <cstdio>

#include "base/result_t.h"

namespace torlan {

/// To be called before anything is opened: fills closed standard descriptors, so that no file of
/// ours becomes "standard output", and turns a reader that went away into an error.
void secure_standard_streams();

/// Writes all bytes to standard output, or tells why it cannot.
base::result_t write_output(const QByteArray& _bytes);

/// From now on write_text() waits for a reader a second at most: a server goes on, and ends,
/// whoever does not read what it says.
void wait_for_no_reader();

/// Writes text for a person at once; that nobody reads it is no error.
void write_text(std::FILE* _stream, const QString& _text);

}  // namespace torlan

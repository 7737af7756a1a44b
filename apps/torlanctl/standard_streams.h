#pragma once

#include <QByteArray>

#include "store/result_t.h"

namespace torlanctl {

/// To be called before anything is opened: fills closed standard descriptors, so that no file of
/// ours becomes "standard output", and turns a reader that went away into an error.
void secure_standard_streams();

/// Writes all bytes to standard output, or tells why it cannot.
database::store::result_t write_output(const QByteArray& _bytes);

/// Writes text for a person to standard error.
void write_message(const QString& _text);

}  // namespace torlanctl

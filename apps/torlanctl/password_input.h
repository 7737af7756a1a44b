#pragma once

#include <QString>

namespace torlan {

/// A password that was typed or piped in, or one sentence without it.
struct password_input_t {
    QString password;
    QString error;
};

/// Reads the first line of standard input. On a terminal it asks and switches the echo off for as
/// long as it reads, also when it is interrupted.
password_input_t read_password();

}  // namespace torlan

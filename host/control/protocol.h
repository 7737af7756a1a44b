#pragma once

#include <QString>

/// What the server of a data folder and its tools say to each other: one question, a line of JSON,
/// and lines of JSON as its answer. Each has "version"; a line with "error" is the last one.
namespace control {

constexpr int version = 1;

/// Bytes of a question, with its line end.
constexpr qsizetype longest_question = 4096;
/// Of a line of an answer.
constexpr qsizetype longest_line = 1024 * 1024;

/// In the data folder: the socket, and the lock of whoever serves the folder.
inline QString socket_name() {
    return QStringLiteral("control.sock");
}
inline QString lock_name() {
    return QStringLiteral("torlan.lock");
}

// Words of questions.
inline QString ask_effective() {
    return QStringLiteral("effective");
}
inline QString ask_status() {
    return QStringLiteral("status");
}
/// Whether the broker holds the states that users may read; takes its time.
inline QString ask_retained() {
    return QStringLiteral("retained");
}
inline QString ask_bus() {
    return QStringLiteral("bus");
}

}  // namespace control

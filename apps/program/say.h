#pragma once

#include <QString>
#include <cstdio>

namespace torlan {

/// Tells a person one sentence, on a line of its own behind the speaker's name: "torlan: the
/// sentence". Control characters, which names of files may hold, become blanks. At once; that
/// nobody reads it is no error. One thread.
void say(std::FILE* _stream, const QString& _sentence);

/// Who speaks; the application, unless told otherwise.
void speak_as(const QString& _speaker);

}  // namespace torlan

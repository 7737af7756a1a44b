#pragma once

#include <QString>

namespace audit {

/// One thing that happened, or several of the same by the same. What is not known stays empty.
struct entry_t {
    qint64 time = 0;   ///< milliseconds since 1970; of the last of several
    qint64 since = 0;  ///< of the first of several; 0: it stands for one
    qint64 count = 1;
    QString user{};    ///< as the client gave it, if nobody was signed in
    QString client{};  ///< identifier at the broker
    /// What a request's topic calls its sender. The user's own word: proves nothing.
    QString called{};
    QString address{};
    QString by{};         ///< who changed something outside of the API, as far as it can be known
    QString operation{};  ///< see operations.h
    QString element{};
    QString function{};
    QString value{};
    QString result{};  ///< an error code, or a word
    QString detail{};  ///< e.g. an error's text, a topic, the path of a setting
    QString uuid{};    ///< of a request

    bool operator==(const entry_t&) const = default;
};

}  // namespace audit

#pragma once

#include <QString>

namespace comunication {

/// What the levels of an API topic say.
///
/// "local/api/<version>/<user>/<client>/request/..." is a request,
/// "local/api/<version>/<user>/status/..." a status message. A request of a client that calls
/// itself "status" is a request.
struct api_topic_t {
    QString version;  ///< third level
    QString user;     ///< fourth level
    QString client;   ///< fifth level of a request; empty for a status message
    QString type;     ///< "request", "status"; empty: not an API topic
    /// Where it begins, in the topic of a request, what is asked for: behind "request/".
    qsizetype path = 0;

    bool is_valid() const { return !type.isEmpty(); }
    bool is_request() const;

    /// Pure. The version and the user of an API topic are identifiers, see database/name_rules.h.
    static api_topic_t parse(const QString& _topic);
};

}  // namespace comunication

#pragma once

#include <QString>

/// The words and the shape of the MQTT API's topics, for everybody but the plugin, which forms its
/// own. Pure functions.
namespace comunication::api_topics {

extern const QString version_1;       ///< "v1"
extern const QString request_word;    ///< "request"
extern const QString status_word;     ///< "status"
extern const QString request_filter;  ///< every request, "local/api/+/+/+/request/#"
extern const QString status_filter;   ///< every status message, "local/api/+/+/status/#"

/// "local/api".
extern const QString root;

/// "local/api/<version>/<user>", above everything that is the user's.
QString user_root(const QString& _version, const QString& _user);

/// Every status message of one user, "local/api/+/<user>/status/#".
QString status_filter_of(const QString& _user);

/// Where the state of an element lies for a user.
QString element_state(const QString& _version, const QString& _user, const QString& _element);

/// Where it is told whether the server is there; @p _installation is the installation's topic.
QString connection(const QString& _installation);

/// Where a client asks for something of an element; @p _verb is "get" or "set".
QString element_request(const QString& _version, const QString& _user, const QString& _client,
                        const QString& _verb, const QString& _element);

/// Where the answer to a request goes: every "request" becomes "status".
QString answer(const QString& _topic);

/// Whether a message may be kept under this topic: below the root every level is an identifier, so
/// that it can be found again and taken back. Other topics are not the API's to judge.
bool may_be_retained(const QString& _topic);

}  // namespace comunication::api_topics

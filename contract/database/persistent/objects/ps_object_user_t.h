#pragma once

#include <QString>

namespace database::persistent::objects {

/// A user of the installation. A value type.
class ps_object_user_t {
 public:
    /// Which kind of permission is asked for.
    enum class PermissionFlag { none = 0, element = 1 };

    explicit ps_object_user_t(QString _username) : username(std::move(_username)) {}

    /// The name the user signs in with: one MQTT topic level.
    QString getUsername() const { return username; }

 private:
    QString username;
};

}  // namespace database::persistent::objects

#pragma once

#include <QJsonObject>
#include <QString>

#include "installation/installation_t.h"

namespace torlan {

/// An installation file on its way into the database, in two steps: read and checked before
/// anything is touched, written as a whole later.
class installation_import_t {
 public:
    /// One sentence that names the place in the file; empty: it can be written.
    QString read(const QString& _file);

    /// Replaces what is in the database, which is made when it is missing. Nothing without a
    /// file that was read. One sentence or empty.
    QString write(const QString& _database) const;

    /// A user's password as the file gives it in clear text; empty when it does not. For the
    /// first hint on the screen only: never log it.
    QString password_of(const QString& _user_id) const;

 private:
    bool is_read = false;
    database::installation::installation_t installation;
    QJsonObject users;
};

}  // namespace torlan

#pragma once

#include <QByteArray>
#include <QString>

#include "installation/installation_t.h"

namespace database::installation {

/// An installation that was read, or why it could not be.
struct read_result_t {
    installation_t installation;
    QString error;  ///< one sentence with file and place, without any password; empty: read

    bool ok() const { return error.isEmpty(); }
};

/// Reads an installation document and checks it whole. Clear-text passwords are hashed, which
/// takes milliseconds for each.
/// @param _name stands in front of the error: "home.json: elements/e-lamp/type: must be ...".
read_result_t read_document(const QByteArray& _bytes, const QString& _name);

/// Reads a file of at most 64 MiB; the error begins with its path as given.
read_result_t read_document_file(const QString& _path);

}  // namespace database::installation

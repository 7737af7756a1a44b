#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "base/result_t.h"
#include "installation/installation_t.h"

namespace database::installation {

/// A document is at most this large, 64 MiB.
constexpr qint64 max_document_bytes = 64 << 20;

/// Reads an installation document and checks it whole. Clear-text passwords are hashed, which
/// takes milliseconds for each.
/// @param _name stands in front of the error: "home.json: elements/e-lamp/type: must be ...", which
///        holds no password
/// @param _known users, by id, of the installation that it will replace: who has the clear-text
///        password already keeps its hash, and with it the sessions
::base::result_of_t<installation_t> read_document(const QByteArray& _bytes, const QString& _name,
                                                  const QMap<QString, user_t>& _known = {});

/// All that is wrong with a document, a sentence each, without its name; empty: read_document()
/// takes it. What is wrong with its shape hides the rest.
QStringList document_problems(const QByteArray& _bytes);

}  // namespace database::installation

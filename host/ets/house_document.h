#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "ets/project_t.h"

namespace ets {

/// The API user that an installation file comes with: may read and write every element.
struct owner_t {
    QString name;           ///< an identifier
    QString password_hash;  ///< as the broker reads it
};

/// The installation that a project becomes, as a document for the import: elements of its functions
/// and of what can be paired, their items with bus data under "knx". What was not understood is
/// noted in @p _project. Equal projects give equal bytes.
QByteArray house_document(project_t* _project, const std::optional<owner_t>& _owner);

}  // namespace ets

#pragma once

#include <QIODevice>

#include "base/result_t.h"
#include "ets/project_t.h"

namespace ets {

/// Reads a project.xml: the project's id and how it writes group addresses.
base::result_t read_information(QIODevice* _file, const QString& _name, project_t* _project);

/// Whether an element is the root of ETS's own files, whatever their version.
bool is_project_root(QStringView _element, QStringView _namespace);

}  // namespace ets

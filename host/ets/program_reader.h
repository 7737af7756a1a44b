#pragma once

#include <QHash>
#include <QIODevice>
#include <QSet>

#include "base/result_t.h"
#include "ets/progress_t.h"

namespace ets {

/// Reads the file of an application program: the types of the references in @p _wanted, of each its
/// own or else that of the object that it refers to. Adds those that have one to @p _types.
base::result_t read_program(QIODevice* _file, const QString& _name, const QSet<QString>& _wanted,
                            QHash<QString, QString>* _types, const progress_t& _progress = {});

}  // namespace ets

#pragma once

#include <QHash>
#include <QSet>
#include <QString>

#include "base/result_t.h"
#include "ets/com_object_t.h"
#include "ets/progress_t.h"
#include "ets/project_t.h"
#include "ets/zip_t.h"

namespace ets {

/// Gives addresses that have no type of their own that of an object which is linked to them: the
/// first in the project that has one, itself or in the program of its device.
class linked_types_t {
 public:
    /// @param _zip the outer one, where the files of manufacturers are
    linked_types_t(zip_t* _zip, const QStringList& _names, const links_t& _links);

    base::result_t resolve(project_t* _project, const progress_t& _progress);

 private:
    base::result_t read_hardware_files(const QList<quint16>& _addresses);
    base::result_t read_programs(const QList<quint16>& _addresses, const progress_t& _progress);
    QString program_of(const com_object_t& _object) const;
    QString full_ref(const com_object_t& _object) const;
    QString type_of(const com_object_t& _object) const;
    bool needs_program(const com_object_t& _object) const;

    zip_t* const zip;
    QHash<QString, QString> path_of;  ///< name in lower case -> as it is in the zip
    const links_t& links;
    QHash<QString, QString> programs;  ///< hardware -> program
    QHash<QString, QString> types;     ///< reference in a program -> type
};

}  // namespace ets

#pragma once

#include <QFileInfo>
#include <QList>
#include <QString>
#include <vector>

#include "loader/driver_metadata_t.h"
#include "loader/loaded_driver_t.h"
#include "loader/refusal_t.h"

class QLibrary;

namespace loader {

/// Loads every driver of a folder. The application object exists; one thread only.
class driver_loader_t {
 public:
    /// Interface identifier that a driver's metadata carries.
    static constexpr QLatin1String driver_interface{"org.kelma.torlan.interfaces"};

    /// @param _folder where the "*.so" files are looked for, not below it
    explicit driver_loader_t(QString _folder);

    /// Reads the metadata of every file, in the order of names, and loads those of the driver
    /// interface. No code of the others runs. Every other file is in refused() afterwards.
    std::vector<loaded_driver_t> load_all();

    /// Files that the last load_all() left out; the folder itself when it cannot be read.
    const QList<refused_file_t>& refused() const { return left_out; }

 private:
    struct candidate_t {
        QString file;
        driver_metadata_t metadata;
    };
    struct root_t {
        interfaces::plugin_driver_interface_t* driver = nullptr;
        refusal_t refusal;
    };

    QList<QFileInfo> files();
    std::vector<candidate_t> scan();
    static root_t load(const QString& _file);
    static root_t make_root(QLibrary& _library);
    static root_t as_driver(const QString& _file, QObject* _instance);
    void refuse(const QString& _file, const refusal_t& _refusal);

    const QString folder;
    QList<refused_file_t> left_out;
};

}  // namespace loader

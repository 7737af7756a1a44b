#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include "database/database_t.h"
#include "drivers/plugins/plugin_driver_api/data/database_view_t.h"

namespace interfaces {

/// Common base of the data API's objects: a name and the server's database.
class data_api_t : public QObject {
    Q_OBJECT

 public:
    /// @param database observed, not owned; may be null or go away at any time
    data_api_t(QPointer<database::database_t> database, QObject* parent);
    ~data_api_t() override;

    /// "data".
    QString getName() const;

 protected:
    const QString name;
    QPointer<database::database_t> database;
    const database_view_t view;  ///< null-safe reading of the database
};

}  // namespace interfaces

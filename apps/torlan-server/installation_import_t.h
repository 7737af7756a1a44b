#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>

#include "base/result_t.h"
#include "installation/installation_t.h"

namespace torlan {

/// An installation file on its way into the database, in two steps: read and checked before
/// anything is touched, written as a whole later. Main thread, with an event loop.
class installation_import_t : public QObject {
    Q_OBJECT

 public:
    explicit installation_import_t(QObject* _parent = nullptr);
    ~installation_import_t() override;

    /// Handles events until the whole file is here: it may be a pipe. A failure names the place in
    /// the file. Who has the file's clear-text password in @p _database already keeps its hash.
    base::result_t read(const QString& _file, const QString& _database);

    /// Makes a read() that waits for the file fail soon.
    void give_up();

    /// Puts it in the place of what is in the database, which is made when it is missing, and lets
    /// go of it: a large one takes some hundred megabytes. Nothing without a file that was read.
    base::result_t write(const QString& _database);

    /// A user's password as the file gives it in clear text; empty when it does not. For the
    /// first hint on the screen only: never log it.
    QString password_of(const QString& _user_id) const;

 Q_SIGNALS:
    void given_up();

 private:
    bool is_read = false;
    database::installation::installation_t installation;
    QJsonObject users;
};

}  // namespace torlan

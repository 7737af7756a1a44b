#pragma once

#include <QObject>
#include <QString>

#include "base/result_t.h"
#include "process/file_lock_t.h"

namespace torlan {

/// The data folder in the hands of its supervisor: made when it is missing, one supervisor's at a
/// time, free of programs that a killed one has left, and with settings in it.
class home_t : public QObject {
    Q_OBJECT

 public:
    explicit home_t(const QString& _path, QObject* _parent = nullptr);
    /// Unlocks it.
    ~home_t() override = default;

    /// Makes it when it is missing; @p _account, that it is to belong to; empty: who makes it.
    /// Root only.
    base::result_t make(const QString& _account);

    /// Locks it, ends the programs that still hold something of it, and writes the settings when
    /// there are none; waits for those, a minute at most.
    /// @param _drivers folder of the drivers, for the settings
    base::result_t open(const QString& _drivers);

    /// Takes out what make() and open() made, with everything that was written there since.
    void take_back();

    QString file(const QString& _name) const { return path + QLatin1Char('/') + _name; }
    QString settings() const { return file(QStringLiteral("settings.json")); }

 Q_SIGNALS:
    /// open() ends what a former supervisor has left; one sentence.
    void ending(const QString& _sentence);

 private:
    base::result_t end_left_programs();
    base::result_t write_settings(const QString& _drivers);

    const QString path;
    process::file_lock_t lock;
    bool made_folder = false;
    bool made_settings = false;
};

}  // namespace torlan

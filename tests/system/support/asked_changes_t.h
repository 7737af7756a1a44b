#pragma once

#include <QMap>
#include <functional>

#include "system/support/acknowledged_t.h"
#include "system/support/run_process_t.h"

namespace support {

/// Somebody who changes the sample home while it runs: values, rights, users and settings in turn,
/// by torlanctl and the configuration server. Knows what was acknowledged.
class asked_changes_t {
 public:
    explicit asked_changes_t(run_process_t* _run) : run(_run) {}

    /// What is stored by now has been so all along.
    void begin();
    /// Asks for the change of this turn and notes whether it was acknowledged; @p _meanwhile is
    /// called while it is under way.
    void ask(
        int _turn, const std::function<void()>& _meanwhile = []() {});

    /// What is not stored as it was acknowledged, in words.
    QStringList lost() const { return record.lost(stored()); }
    int acknowledged() const { return record.acknowledged(); }
    /// Whether the database is in order, as SQLite and the foreign keys say.
    bool is_whole() const;

 private:
    void put_setting(const QString& _value, const std::function<void()>& _meanwhile);
    /// What is stored now of what was ever asked for.
    QMap<QString, QString> stored() const;
    QString stored_once(const QString& _query) const;

    run_process_t* const run;
    acknowledged_t record;
    int number = 0;
};

}  // namespace support

#pragma once

#include <QHash>
#include <QObject>

#include "database/database_t.h"
#include "installation/item_limits_t.h"

namespace database::live {

/// Between the write requests that leave the database and whoever owns the items: lets through what
/// an item takes. Whoever asked has its answer by then, which promises nothing. Host thread only.
class write_gate_t : public QObject {
    Q_OBJECT

 public:
    explicit write_gate_t(const database_t* _database, QObject* _parent = nullptr);
    ~write_gate_t() override;

    /// An item without limits takes everything.
    void set_limits(const QString& _id, const installation::item_limits_t& _limits);
    /// Why the item does not take the value; empty: it does.
    QString refusal(const QString& _id, const QString& _value) const;
    void forget(const QString& _id) { limits.remove(_id); }
    void clear() { limits.clear(); }

 Q_SIGNALS:
    void item_asked(const QString& _id, const QString& _value);
    /// @param _reason such as "it is above 100"
    void item_refused(const QString& _id, const QString& _value, const QString& _reason);

 private:
    void judge(const QString& _id, const QString& _value);

    QHash<QString, installation::item_limits_t> limits;  ///< by item id, those that limit anything
};

}  // namespace database::live

#pragma once

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <set>

#include "database/database_t.h"
#include "live/item_teller_t.h"

namespace database::live {

/// The one place where realtime values in memory change: stores the value, announces it, and
/// remembers what is not on disk yet. Host thread only.
class realtime_writer_t : public QObject {
    Q_OBJECT

 public:
    explicit realtime_writer_t(database_t* _database, QObject* _parent = nullptr);
    ~realtime_writer_t() override;

    /// The bus's side: stores, then announces, an unchanged value too. A value that the store does
    /// not take is cleaned first. False: unknown id.
    bool write_item(const QString& _id, const QString& _value);
    bool write_scenario(const QString& _id, bool _execution);

    /// The store's side: takes over a value that is on disk, without announcing it; what was
    /// unsaved for the id is dropped. True when the value in memory was another or none.
    bool take_item(const QString& _id, const QString& _value);
    bool take_scenario(const QString& _id, bool _execution);
    void forget_item(const QString& _id);
    void forget_scenario(const QString& _id);

    /// At once, or their values of then when those before them are worked off.
    void announce_items(const QStringList& _ids) { announced.add(_ids); }
    void announce_scenario(const QString& _id);

    /// Whose portions have to be answered, so that items are paced.
    item_teller_t& teller() { return announced; }

    /// Values that are not on disk.
    struct pending_t {
        QMap<QString, QString> items;
        QMap<QString, bool> scenarios;
    };
    pending_t pending() const;
    /// After the objects were made anew: puts @p _pending back, to be saved. Announces nothing.
    /// @return how many are lost, what they belong to is gone
    int put_back(const pending_t& _pending);

    /// Ids whose value in memory is not on disk.
    const std::set<QString>& unsaved_items() const { return dirty_items; }
    const std::set<QString>& unsaved_scenarios() const { return dirty_scenarios; }
    /// Says that all of them are on disk, or do not matter any more.
    void clear_unsaved();

 Q_SIGNALS:
    /// A value became unsaved or changed again before it was saved.
    void unsaved();

 private:
    QPointer<database_t> database;
    item_teller_t announced;
    std::set<QString> dirty_items;
    std::set<QString> dirty_scenarios;
};

}  // namespace database::live

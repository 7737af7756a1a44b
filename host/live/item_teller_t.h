#pragma once

#include <QPointer>
#include <QStringList>

#include "database/database_t.h"
#include "live/portions_t.h"

namespace database::live {

/// Announces that items have new values: an item's latest one only, the next ones when drivers have
/// taken the last. What waits is bounded by the items and elements that there are. Host thread
/// only.
class item_teller_t {
 public:
    explicit item_teller_t(database_t* _database);
    ~item_teller_t();

    void add(const QStringList& _items) { items.add(_items); }

    /// Portions of items, to be answered when drivers have heard of them; one may go on as
    /// elements.
    portions_t* item_portions() { return &items; }
    /// Portions of elements, to be answered when what drivers make of them has left.
    portions_t* element_portions() { return &elements; }

 private:
    qsizetype next_portion(qsizetype _waiting, int _under_way);
    void tell(const QStringList& _items);
    void tell_elements_with(const QStringList& _items);
    void tell_item(const QString& _id);
    void tell_element(const QString& _id);

    QPointer<database_t> database;
    bool as_elements = false;  ///< what next_portion() said of the next one
    portions_t elements;
    portions_t items;
};

}  // namespace database::live

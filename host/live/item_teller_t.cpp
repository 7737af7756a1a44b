#include "live/item_teller_t.h"

#include "live/item_elements.h"
#include "live/item_portion.h"

namespace database::live {

namespace {

/// Drivers make a message for each user of each. An item that more elements show is told as such.
constexpr int elements_at_a_time = 64;

}  // namespace

item_teller_t::item_teller_t(database_t* _database)
    : database(_database),
      elements([this](const QString& _id) { tell_element(_id); }, elements_at_a_time),
      items([this](const QStringList& _ids) { tell(_ids); },
            [this](qsizetype _waiting, int _under_way) {
                return next_portion(_waiting, _under_way);
            }) {}

item_teller_t::~item_teller_t() = default;

qsizetype item_teller_t::next_portion(qsizetype _waiting, int _under_way) {
    const qsizetype listeners =
        database ? database->getPersistent()->getData()->getElements()->getObjects().size() : 0;
    const item_portion_t next =
        next_item_portion(_waiting, listeners, _under_way, elements.is_waiting());
    as_elements = next.as_elements;
    return next.items;
}

void item_teller_t::tell(const QStringList& _items) {
    if (!database) {
        return;
    }
    if (as_elements) {
        tell_elements_with(_items);
        return;
    }
    for (const QString& id : _items) {
        tell_item(id);
    }
}

void item_teller_t::tell_elements_with(const QStringList& _items) {
    const QHash<QString, QStringList> showing = elements_by_item(*database, _items);
    QStringList together;
    for (const QString& id : _items) {
        const QStringList ids = showing.value(id);
        if (ids.size() > elements_at_a_time) {
            tell_item(id);
        } else {
            together += ids;
        }
    }
    elements.add(together);
}

void item_teller_t::tell_item(const QString& _id) {
    Q_EMIT database->getRealtime()->getNotifier()->onRealtimeChangeItem(
        {{QStringLiteral("item"), _id}}, _id);
}

void item_teller_t::tell_element(const QString& _id) {
    if (database) {
        Q_EMIT database->getPersistent()->getNotifier()->onPersistentChangeElement(
            {{QStringLiteral("element"), _id}}, _id);
    }
}

}  // namespace database::live

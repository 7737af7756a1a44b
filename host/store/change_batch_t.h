#pragma once

#include <QString>
#include <set>

#include "database/name_rules.h"

namespace database::store {

/// What the rows of the change table between two reads tell: the keys whose rows are to be read
/// again. Values only.
struct change_batch_t {
    qint64 last_sequence = 0;  ///< the last row read
    bool everything = false;   ///< a bulk row: read the whole installation again
    bool topic = false;
    bool buses = false;     ///< what the bus has to do with items or scenarios
    bool accounts = false;  ///< a user name or a password changed, users came or went
    std::set<QString> items, scenarios, thermostats, elements, users;
    std::set<QString> limits;  ///< items of which clients may write something else

    /// Takes out the keys that are no identifiers: nothing in memory has such a one, and nobody is
    /// to hear of it.
    void drop_unnamed() {
        for (std::set<QString>* keys :
             {&items, &scenarios, &thermostats, &elements, &users, &limits}) {
            std::erase_if(*keys,
                          [](const QString& _key) { return !identifier_error(_key).isEmpty(); });
        }
    }
};

}  // namespace database::store

#pragma once

#include <QtGlobal>

namespace database::live {

/// Items that are announced next, and how.
struct item_portion_t {
    qsizetype items;
    bool as_elements;  ///< as changes of the elements that show them
};

/// The price of an item is an event for each of the @p _listeners, who all hear of it. While
/// drivers keep up, items are told as what they are, few at a time. What has to wait and would keep
/// drivers busy for long is told to those that show it, at a price that does not know the others.
///
/// @param _under_way portions that are not worked off yet
/// @param _elements_wait others are told as elements, and these do not overtake them
item_portion_t next_item_portion(qsizetype _waiting, qsizetype _listeners, int _under_way,
                                 bool _elements_wait);

}  // namespace database::live

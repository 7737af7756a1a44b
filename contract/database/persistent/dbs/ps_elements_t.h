#pragma once

#include "database/persistent/objects/ps_object_element_t.h"
#include "database/table_t.h"

namespace database::persistent::dbs {

class ps_elements_t : public table_t<objects::ps_object_element_t> {
 public:
    /// A heap copy that the caller owns and deletes; null when the id is unknown.
    objects::ps_object_element_t* CloneElement(const QString& _id) const {
        const objects::ps_object_element_t* element = list(_id);
        return element != nullptr ? element->clone().release() : nullptr;
    }
};

}  // namespace database::persistent::dbs

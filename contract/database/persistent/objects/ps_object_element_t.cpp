#include "database/persistent/objects/ps_object_element_t.h"

#include <utility>

namespace database::persistent::objects {

ps_object_element_t::ps_object_element_t(ps_element_data_t _data, QObject* _parent)
    : QObject(_parent), data(std::move(_data)) {}

ps_object_element_t::~ps_object_element_t() = default;

std::unique_ptr<ps_object_element_t> ps_object_element_t::clone() const {
    return std::make_unique<ps_object_element_t>(data);
}

}  // namespace database::persistent::objects

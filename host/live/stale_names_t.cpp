#include "live/stale_names_t.h"

namespace database::live {

void stale_names_t::add(const QString& _name, const std::set<QString>& _elements) {
    elements[_name].insert(_elements.begin(), _elements.end());
}

void stale_names_t::renew(const QString& _element) {
    // The names stay: what they could not do is remembered as well.
    for (std::set<QString>& ids : elements) {
        ids.erase(_element);
    }
}

}  // namespace database::live

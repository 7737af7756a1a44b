#include "live/stale_names_t.h"

namespace database::live {

void stale_names_t::add(const QString& _name, const std::set<QString>& _elements) {
    if (!names.contains(_name)) {
        names.insert(_name, std::set<QString>());
    }
    std::optional<std::set<QString>>& known = names[_name];
    if (!known) {
        return;
    }
    remembered -= qsizetype(known->size());
    known->insert(_elements.begin(), _elements.end());
    if (remembered + qsizetype(known->size()) > most_rights) {
        known.reset();
    } else {
        remembered += qsizetype(known->size());
    }
}

std::optional<std::set<QString>> stale_names_t::take(const QString& _name) {
    if (!names.contains(_name)) {
        return std::set<QString>();
    }
    const std::optional<std::set<QString>> known = names.take(_name);
    remembered -= known ? qsizetype(known->size()) : 0;
    return known;
}

void stale_names_t::renew(const QString& _element) {
    // The names stay: what they could not do is remembered as well.
    for (std::optional<std::set<QString>>& known : names) {
        remembered -= known ? qsizetype(known->erase(_element)) : 0;
    }
}

void stale_names_t::clear() {
    names.clear();
    remembered = 0;
}

}  // namespace database::live

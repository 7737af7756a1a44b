#include "utility/type_configuration_mode_t.h"

namespace utility {

const type_configuration_mode_t type_configuration_mode_t::http{QStringLiteral("http")};
const type_configuration_mode_t type_configuration_mode_t::file{QStringLiteral("file")};

// Constant-initialised, so the constants above may register; defined behind them, so that it is
// destroyed before them.
constinit QHash<QString, const type_configuration_mode_t*> type_configuration_mode_t::map;

type_configuration_mode_t::type_configuration_mode_t() : sequence(maxI++) {}

type_configuration_mode_t::type_configuration_mode_t(const QString& _name)
    : sequence(maxI++), name(_name) {
    map.insert(name, this);
}

type_configuration_mode_t::type_configuration_mode_t(const type_configuration_mode_t& other) =
    default;

type_configuration_mode_t& type_configuration_mode_t::operator=(
    const type_configuration_mode_t& other) {
    if (this != &other) {
        name = other.name;
    }
    return *this;
}

type_configuration_mode_t::~type_configuration_mode_t() = default;

bool type_configuration_mode_t::operator==(const type_configuration_mode_t& other) const {
    return is(other);
}

bool type_configuration_mode_t::operator!=(const type_configuration_mode_t& other) const {
    return !is(other);
}

QString type_configuration_mode_t::ToString() const {
    return name;
}

bool type_configuration_mode_t::is(const QString& s) const {
    return s == name;
}

bool type_configuration_mode_t::is(const type_configuration_mode_t& other) const {
    return other.name == name;
}

int type_configuration_mode_t::number() const {
    return sequence;
}

}  // namespace utility

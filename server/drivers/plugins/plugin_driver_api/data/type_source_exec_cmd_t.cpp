#include "drivers/plugins/plugin_driver_api/data/type_source_exec_cmd_t.h"

namespace interfaces {

const type_source_exec_cmd_t type_source_exec_cmd_t::user{QStringLiteral("user")};
const type_source_exec_cmd_t type_source_exec_cmd_t::system{QStringLiteral("system")};
const type_source_exec_cmd_t type_source_exec_cmd_t::scene{QStringLiteral("scene")};
const type_source_exec_cmd_t type_source_exec_cmd_t::scheduler{QStringLiteral("scheduler")};
const type_source_exec_cmd_t type_source_exec_cmd_t::rule{QStringLiteral("rule")};
const type_source_exec_cmd_t type_source_exec_cmd_t::thermo{QStringLiteral("thermo")};
const type_source_exec_cmd_t type_source_exec_cmd_t::lockfunction{QStringLiteral("lockfunction")};
const type_source_exec_cmd_t type_source_exec_cmd_t::presencesimulation{
    QStringLiteral("presencesimulation")};
const type_source_exec_cmd_t type_source_exec_cmd_t::unknown{QStringLiteral("unknown")};

// Constant-initialised, so the constants above may register; defined behind them, so that it is
// destroyed before them.
constinit QHash<QString, const type_source_exec_cmd_t*> type_source_exec_cmd_t::map;

type_source_exec_cmd_t::type_source_exec_cmd_t() : sequence(maxI++) {}

type_source_exec_cmd_t::type_source_exec_cmd_t(const QString& _name)
    : sequence(maxI++), name(_name) {
    map.insert(name, this);
}

type_source_exec_cmd_t::type_source_exec_cmd_t(const type_source_exec_cmd_t& other) = default;

type_source_exec_cmd_t& type_source_exec_cmd_t::operator=(const type_source_exec_cmd_t& other) {
    if (this != &other) {
        name = other.name;
    }
    return *this;
}

type_source_exec_cmd_t::~type_source_exec_cmd_t() = default;

bool type_source_exec_cmd_t::operator==(const type_source_exec_cmd_t& other) const {
    return is(other);
}

bool type_source_exec_cmd_t::operator!=(const type_source_exec_cmd_t& other) const {
    return !is(other);
}

QString type_source_exec_cmd_t::ToString() const {
    return name;
}

bool type_source_exec_cmd_t::is(const QString& s) const {
    return s == name;
}

bool type_source_exec_cmd_t::is(const type_source_exec_cmd_t& other) const {
    return other.name == name;
}

int type_source_exec_cmd_t::number() const {
    return sequence;
}

type_source_exec_cmd_t type_source_exec_cmd_t::fromString(const QString& s) {
    return *map.value(s, &unknown);
}

}  // namespace interfaces

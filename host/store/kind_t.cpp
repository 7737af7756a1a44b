#include "store/kind_t.h"

#include <array>

namespace database::store {

namespace {

struct row_t {
    const char* word;
    const char* table;
    const char* name;
};

const row_t& row_of(kind_t _kind) {
    static constexpr std::array rows{
        row_t{"element", "elements", "id"}, row_t{"item", "items", "id"},
        row_t{"scenario", "scenarios", "id"}, row_t{"thermostat", "thermostats", "id"},
        row_t{"user", "users", "username"}};
    return rows.at(size_t(_kind));
}

}  // namespace

QString word_of(kind_t _kind) {
    return QLatin1String(row_of(_kind).word);
}

QString table_of(kind_t _kind) {
    return QLatin1String(row_of(_kind).table);
}

QString name_column_of(kind_t _kind) {
    return QLatin1String(row_of(_kind).name);
}

}  // namespace database::store

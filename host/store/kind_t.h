#pragma once

#include <QString>

namespace database::store {

/// What an installation is made of, and who may use it.
enum class kind_t { element, item, scenario, thermostat, user };

/// Its word for people, "thermostat".
QString word_of(kind_t _kind);
/// The table of their rows.
QString table_of(kind_t _kind);
/// The column that people name them by.
QString name_column_of(kind_t _kind);

}  // namespace database::store

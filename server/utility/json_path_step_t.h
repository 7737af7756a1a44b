#pragma once

#include <QString>

namespace utility {

/// First step of a path such as "a/b/c", "list[2]/name" or "list[2]name".
struct json_path_step_t {
    QString key;   ///< member name, or a decimal position on an array
    int index;     ///< number in the brackets; without brackets the whole path read as a number
    QString rest;  ///< what follows this step; empty: last step

    /// Takes the first step off @p _path. A leading "/" gives an empty key and an empty rest.
    static json_path_step_t parse(const QString& _path);
};

}  // namespace utility

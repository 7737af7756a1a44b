#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "base/result_t.h"
#include "ets/limits_t.h"
#include "ets/progress_t.h"
#include "ets/project_t.h"

namespace ets {

/// How a project is read.
struct reading_t {
    std::optional<QString> password{};  ///< of the project; nothing: none was given
    limits_t limits{};
    progress_t progress{};
    bool* password_used = nullptr;  ///< becomes whether the project was protected, if anybody asks
};

/// Reads a .knxproj of ETS 4, 5 or 6. Does not name the file in a failure's sentence.
base::result_of_t<project_t> read_project(const QByteArray& _zip, const reading_t& _how);

}  // namespace ets

#pragma once

#include <QString>
#include <QStringList>

#include "base/result_t.h"

namespace torlan {

/// What the program was called with.
struct options_t {
    QString to_show;  ///< to be printed instead of doing anything
    QString project;
    QString password_file;  ///< empty: none
    QString user;           ///< empty: none
    QString user_password_file;
    QString output;  ///< empty: standard output
    bool only_groups = false;
};

/// Takes the arguments apart, the program's name first; options may stand anywhere.
base::result_of_t<options_t> parse_options(const QStringList& _arguments);

}  // namespace torlan

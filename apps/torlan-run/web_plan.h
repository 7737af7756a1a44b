#pragma once

#include <QStringList>

#include "base/result_t.h"
#include "options_t.h"
#include "web_t.h"

namespace torlan {

/// What becomes of the console.
struct web_plan_t {
    std::optional<web_t> web;  ///< nothing: it is left out
    QStringList told;          ///< sentences about what is other than usual
};

/// Chooses the console's ports. A port that nobody asked for gives way to a free one; one that was
/// asked for and is in use is a failure. A console that cannot be is left out.
/// @param _pages folder of the page's files
base::result_of_t<web_plan_t> plan_web(const options_t& _options, const QString& _pages);

}  // namespace torlan

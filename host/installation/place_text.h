#pragma once

#include <QStringList>

namespace database::installation {

/// Keys from a document's root as a sentence names the place: "elements/e-lamp/type".
QString place_text(const QStringList& _place);

}  // namespace database::installation

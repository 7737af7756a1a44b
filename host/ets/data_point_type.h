#pragma once

#include <QString>
#include <QStringView>

/// Data point types as ETS writes them, "DPST-1-1" or "DPT-1", and as people do, "1.001" or "1".
namespace ets {

/// "DPST-1-1" -> "1.001", "DPT-1" -> "1", "DPST-20-102" -> "20.102"; empty: no type.
QString type_text(QStringView _word);

/// The first type of an attribute, which may hold several; empty: none.
QString first_type(QStringView _words);

/// The last one, which is the address's own where an export lists those of linked objects as well.
QString last_type(QStringView _words);

/// "9.001" -> 9; 0: no type.
int main_type(QStringView _type);

}  // namespace ets

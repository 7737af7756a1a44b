#pragma once

#include <QString>

/// What a communication object of a device is called in the manufacturer's file.
namespace ets {

/// Without the instances of modules: "MD-2_M-17_MI-1_O-3-0_R-159" -> "MD-2_O-3-0_R-159"; those of
/// modules inside modules go, too.
QString without_instances(const QString& _ref);

/// The program that a reference names itself: "M-0083_A-0013-11-A9D6_O-0_R-1" ->
/// "M-0083_A-0013-11-A9D6"; empty: it names none.
QString program_in(const QString& _ref);

/// "M-0083_H-19-1_HP-0013-11-A9D6" -> "M-0083_A-0013-11-A9D6", which it mostly is; the file of the
/// manufacturer's hardware says it for sure. Empty: cannot be told.
QString usual_program(const QString& _hardware);

/// "M-0083_..." -> "M-0083"; empty: no manufacturer is named.
QString manufacturer_in(const QString& _ref);

}  // namespace ets

#pragma once

#include <QStringView>

/// True for the names by which a program reaches its own machine: "localhost" in any case,
/// "127.0.0.1", "::1" (without brackets). Nothing is looked up: a name that merely resolves to
/// loopback is not among them.
bool is_loopback_host(QStringView _host);

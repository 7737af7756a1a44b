#pragma once

#include <QByteArray>

/// What may be said of states by their payloads alone. Pure.
namespace comunication::state_rules {

/// Whether nothing is lost when @p _next is published in the place of @p _waiting, of the same
/// topic: it is the deletion, or a state that holds every function of the other one. A packet
/// after a change holds the changed functions only. A deletion gives way to another one alone.
bool gives_way(const QByteArray& _waiting, const QByteArray& _next);

}  // namespace comunication::state_rules

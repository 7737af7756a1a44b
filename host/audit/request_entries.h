#pragma once

#include <QList>

#include "audit/entry_t.h"
#include "endpoint/exchange_t.h"

namespace audit {

/// Functions of one request that are told one by one; those behind are told in one.
constexpr qsizetype most_functions = 1'000;

/// What only has to be held of an exchange until its entries are made: nothing of what was read.
comunication::exchange_t without_answered_data(comunication::exchange_t _exchange);

/// What a request did: one entry for each function that it writes, since each of them has a result
/// of its own, and somebody looks for one element; for every other request one. Pure.
QList<entry_t> request_entries(const comunication::exchange_t& _exchange, qint64 _time);

}  // namespace audit

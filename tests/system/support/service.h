#pragma once

#include <functional>

#include "system/support/run_process_t.h"

namespace support {

/// Whether alice comes in and has an answer to a read within the limit.
bool is_user_served(const run_process_t& _run, int _limit_ms = 30'000);

/// Whether the configuration server answers within the limit.
bool is_config_served(const run_process_t& _run, int _limit_ms = 30'000);

/// The first line of what a server on a port of this machine answers, empty when nothing came;
/// @p _asked is called meanwhile.
QByteArray ask(
    quint16 _port, const QByteArray& _request, const std::function<void()>& _asked = []() {});

/// What is wrong with what a user of the sample home is shown, looked at until nothing is or the
/// limit is over; empty: nothing. Each element that he may read has a retained state with the
/// values that a read gives, and nothing else has one.
QString wrong_for(const run_process_t& _run, const QString& _user, int _limit_ms = 20'000);

}  // namespace support

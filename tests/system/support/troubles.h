#pragma once

#include <QByteArray>
#include <functional>
#include <memory>
#include <vector>

#include "system/support/host_process_t.h"

namespace support {

/// Something that others do to a host; it goes on until what begin() gave goes. Null: it did not
/// begin.
struct trouble_t {
    const char* name;
    std::function<std::shared_ptr<void>(const host_process_t& _host)> begin;
};

/// Of @p _user, who may do everything, and of nobody, who has an account and no right.
std::vector<trouble_t> floods_of_a_user(const QByteArray& _user = "user0");

/// Of people without an account, and of sessions that were left behind.
std::vector<trouble_t> other_troubles();

}  // namespace support

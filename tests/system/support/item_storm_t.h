#pragma once

#include <atomic>
#include <chrono>
#include <thread>

#include "system/support/database_shell_t.h"

namespace support {

/// Changes 65 items 20 times a second, as a bus driver or a script does, until it goes.
class item_storm_t {
 public:
    /// @p _items of these identifiers, as LIKE reads it
    explicit item_storm_t(const QString& _file, const QString& _items = QStringLiteral("%"))
        : thread([this, _file, _items]() {
              const database_shell_t shell(_file);
              while (!ends) {
                  shell.run(QStringLiteral(
                                "UPDATE items SET value = CAST(value AS INTEGER) + 1 WHERE id IN "
                                "(SELECT id FROM items WHERE id LIKE '%1' LIMIT 65)")
                                .arg(_items));
                  std::this_thread::sleep_for(std::chrono::milliseconds(50));
              }
          }) {}
    ~item_storm_t() {
        ends = true;
        thread.join();
    }

 private:
    std::atomic<bool> ends{false};
    std::thread thread;
};

}  // namespace support

#include "bench/cases/item_writer_t.h"

#include <algorithm>

#include "bench/load/client_loop_t.h"
#include "system/support/database_shell_t.h"

namespace bench {

namespace {

using namespace std::chrono_literals;

constexpr auto tick = 10ms;
/// More in one transaction are a bulk change.
constexpr long most_together = 60;

QString statement(long _value, int _items) {
    return QStringLiteral("UPDATE items SET value = '%1' WHERE id = 'i-%2'")
        .arg(_value)
        .arg(_value % _items);
}

}  // namespace

item_writer_t::item_writer_t(QString _database, int _items, int _rate, int _count)
    : database(std::move(_database)),
      items(_items),
      rate(_rate),
      times(std::size_t(_count) + 1),
      thread([this]() { run(); }) {}

item_writer_t::~item_writer_t() {
    thread.join();
}

void item_writer_t::run() {
    const support::database_shell_t shell(database);
    const auto begin = clock_t::now();
    long written = 0;
    while (written < count() && good && !client_loop_t::is_stopped()) {
        const double passed = std::chrono::duration<double>(clock_t::now() - begin).count();
        const long due = std::min(count(), long(passed * rate) + 1);
        QStringList statements;
        for (; written < due && statements.size() < most_together; ++written) {
            times[std::size_t(written + 1)] = clock_t::now();
            statements.append(statement(written + 1, items));
        }
        good = statements.isEmpty() || shell.run_together(statements);
        std::this_thread::sleep_until(begin + tick * ((clock_t::now() - begin) / tick + 1));
    }
    done = true;
}

long item_writer_t::last_of(int _item) const {
    const long last = count();
    return std::max(0L, last - (last - _item % items + items) % items);
}

}  // namespace bench

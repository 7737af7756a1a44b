#pragma once

#include <QString>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace bench {

/// Another program that writes items' values into the database, so many a second, as a bus would:
/// "i-0", "i-1" and so on in turn, each value one more than the last. A thread of its own.
class item_writer_t {
 public:
    using clock_t = std::chrono::steady_clock;

    item_writer_t(QString _database, int _items, int _rate, int _count);
    /// Waits for its end.
    ~item_writer_t();

    bool is_done() const { return done; }
    /// Whether every statement was taken.
    bool is_good() const { return good; }
    /// When @p _value, from 1 on, was written. Any thread, for values that it has seen.
    clock_t::time_point written(long _value) const { return times[std::size_t(_value)]; }
    long count() const { return long(times.size()) - 1; }
    /// The last value of an item, 0 when it was not written; once done.
    long last_of(int _item) const;

 private:
    void run();

    const QString database;
    const int items;
    const int rate;
    std::vector<clock_t::time_point> times;  ///< by value
    std::atomic<bool> done{false};
    std::atomic<bool> good{true};
    std::thread thread;
};

}  // namespace bench

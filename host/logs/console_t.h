#pragma once

#include <QtGlobal>
#include <chrono>
#include <memory>
#include <string>

namespace utility::logs {

/// Lines for standard output that nobody waits for: a thread of its own writes them as far as
/// somebody reads. What nobody reads is kept up to a limit; beyond it lines are dropped, and
/// counted in a line of their own when it flows again. Without a reader (a closed pipe) it is over.
class console_t {
 public:
    /// Bytes that may wait.
    static constexpr std::size_t limit = 1024 * 1024;
    /// What destruction waits for a reader.
    static constexpr std::chrono::milliseconds patience{300};

    explicit console_t(int _descriptor);
    /// Writes what waits, within the patience. What is left then is lost.
    ~console_t();
    Q_DISABLE_COPY_MOVE(console_t)

    /// Any thread, at once.
    void write(std::string _line);

    /// Nobody can read it any more: what is written is lost.
    bool is_closed() const;

 private:
    struct state_t;
    const std::shared_ptr<state_t> state;  ///< the thread's as well, which may outlive this object
};

}  // namespace utility::logs

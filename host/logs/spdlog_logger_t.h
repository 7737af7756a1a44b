#pragma once

#include <memory>

#include "base/result_t.h"
#include "logs/classlogs.h"
#include "logs/log_settings_t.h"

namespace utility::logs {

/// The host's logger: lines go through a bounded queue to a thread of its own, which writes them
/// to a rotating file (mode 0640) and to standard output.
///
/// A line reads "time [level] source:line function message". When the queue is full its oldest
/// line is lost and counted. Standard output that nobody reads holds neither the file nor the end,
/// see console_t. Destruction writes what is queued; no other thread may log then.
class spdlog_logger_t : public classlogs {
 public:
    /// Opens the file and starts the thread.
    static base::result_of_t<std::unique_ptr<spdlog_logger_t>> open(
        const log_settings_t& _settings);

    ~spdlog_logger_t() override;
    Q_DISABLE_COPY_MOVE(spdlog_logger_t)

    void log_asynch(const QString& _message, int _level, const QString& _function,
                    const QString& _source, int _line) override;

    /// Lines lost to a full queue so far. Any thread.
    quint64 dropped() const;

 private:
    struct parts_t;
    explicit spdlog_logger_t(std::unique_ptr<parts_t> _parts);

    const std::unique_ptr<parts_t> parts;
};

}  // namespace utility::logs

#include "logs/spdlog_logger_t.h"

#include <spdlog/async_logger.h>
#include <spdlog/details/thread_pool.h>
#include <spdlog/sinks/sink.h>

#include <algorithm>

#include "logs/log_sinks.h"
#include "logs/log_text.h"

namespace utility::logs {

struct spdlog_logger_t::parts_t {
    int highest_level;  ///< of both sinks; what is above is dropped at once
    // The logger goes first: the pool's destructor then writes what is still queued.
    std::shared_ptr<spdlog::details::thread_pool> pool;
    std::shared_ptr<spdlog::async_logger> logger;
};

base::result_of_t<std::unique_ptr<spdlog_logger_t>> spdlog_logger_t::open(
    const log_settings_t& _settings) {
    try {
        const spdlog::sink_ptr file = make_file_sink(_settings);
        const spdlog::sinks_init_list sinks = {file, make_console_sink(_settings, file)};
        auto parts = std::make_unique<parts_t>();
        parts->highest_level = std::max(_settings.stdout_level, _settings.file_level);
        parts->pool = std::make_shared<spdlog::details::thread_pool>(
            static_cast<std::size_t>(std::max(_settings.queue, 1)), 1);
        parts->logger = std::make_shared<spdlog::async_logger>(
            "torlan", sinks, parts->pool, spdlog::async_overflow_policy::overrun_oldest);
        parts->logger->set_level(spdlog::level::trace);
        parts->logger->set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
        parts->logger->flush_on(spdlog::level::trace);
        return std::unique_ptr<spdlog_logger_t>(new spdlog_logger_t(std::move(parts)));
    } catch (const std::exception& error) {
        return base::result_t::failed(
            QStringLiteral("The log cannot be written in %1: %2.")
                .arg(_settings.folder, QString::fromLocal8Bit(error.what())));
    }
}

spdlog_logger_t::spdlog_logger_t(std::unique_ptr<parts_t> _parts) : parts(std::move(_parts)) {}

spdlog_logger_t::~spdlog_logger_t() = default;

void spdlog_logger_t::log_asynch(const QString& _message, int _level, const QString& _function,
                                 const QString& _source, int _line) {
    if (_level > parts->highest_level) {
        return;
    }
    const std::string line = log_line_text(_message, _level, _function, _source, _line);
    parts->logger->log(static_cast<spdlog::level::level_enum>(on_spdlog_scale(_level)),
                       spdlog::string_view_t(line));
    if (_level <= 0) {
        parts->logger->flush();  // the scale's top is never flushed on its own
    }
}

quint64 spdlog_logger_t::dropped() const {
    return parts->pool->overrun_counter();
}

}  // namespace utility::logs

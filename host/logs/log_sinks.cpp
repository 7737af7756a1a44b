#include "logs/log_sinks.h"

#include <fcntl.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <optional>
#include <utility>

#include "logs/console_t.h"
#include "logs/log_text.h"

namespace utility::logs {

namespace {

using spdlog::details::log_msg;
using spdlog::sinks::sink;

// A sink's threshold; one above the scale takes nothing.
spdlog::level::level_enum threshold(int _level) {
    return _level < 0 ? spdlog::level::n_levels
                      : static_cast<spdlog::level::level_enum>(on_spdlog_scale(_level));
}

// spdlog opens with the process's umask; the file exists with its mode before that.
void create_with_mode(const std::string& _file) {
    const int descriptor = ::open(_file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0640);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

/// Which file has the name.
std::optional<std::pair<dev_t, ino_t>> identity_of(const std::string& _file) {
    struct stat status = {};
    return ::stat(_file.c_str(), &status) == 0
               ? std::optional(std::pair(status.st_dev, status.st_ino))
               : std::nullopt;
}

/// A line of the log's own.
void tell(sink& _sink, const char* _place, int _line, const QString& _sentence) {
    const std::string text = log_line_text(_sentence, 2, QLatin1String(_place),
                                           QStringLiteral("host/logs/log_sinks"), _line);
    _sink.log(log_msg("torlan", spdlog::level::err, spdlog::string_view_t(text)));
}

/// Used by the logger's thread alone.
class file_sink_t : public sink {
 public:
    explicit file_sink_t(const log_settings_t& _settings)
        : settings(_settings),
          path(QFile::encodeName(
                   QDir(_settings.folder).filePath(_settings.name + QStringLiteral(".log")))
                   .toStdString()),
          formatter(std::make_unique<spdlog::pattern_formatter>()) {
        open();
    }

    void log(const log_msg& _message) override {
        const auto there = identity_of(path);
        if (!there || there != known) {
            make_again();
        }
        file->log(_message);
        known = identity_of(path);  // the line may have turned the files
    }
    void flush() override { file->flush(); }
    void set_pattern(const std::string& _pattern) override {
        set_formatter(std::make_unique<spdlog::pattern_formatter>(_pattern));
    }
    void set_formatter(std::unique_ptr<spdlog::formatter> _formatter) override {
        formatter = std::move(_formatter);
        file->set_formatter(formatter->clone());
    }

 private:
    void open() {
        spdlog::file_event_handlers handlers;
        handlers.before_open = create_with_mode;
        file = std::make_unique<spdlog::sinks::rotating_file_sink_st>(
            path, static_cast<std::size_t>(std::max(settings.size_mb, 1)) * 1024 * 1024,
            static_cast<std::size_t>(std::clamp(settings.rotation, 0, 1000)), false, handlers);
        file->set_formatter(formatter->clone());
        known = identity_of(path);
    }

    /// As long as it cannot be made, what is written goes where it went.
    void make_again() {
        if (!QDir().mkpath(settings.folder)) {
            return;
        }
        try {
            open();
        } catch (const spdlog::spdlog_ex&) {
            return;
        }
        tell(*file, "make_again", __LINE__,
             QStringLiteral("The log file had been taken away and was made again"));
    }

    const log_settings_t settings;
    const std::string path;
    std::unique_ptr<spdlog::formatter> formatter;
    std::unique_ptr<spdlog::sinks::rotating_file_sink_st> file;
    std::optional<std::pair<dev_t, ino_t>> known;
};

/// Used by the logger's thread alone.
class console_sink_t : public sink {
 public:
    explicit console_sink_t(std::shared_ptr<sink> _file)
        : file(std::move(_file)),
          formatter(std::make_unique<spdlog::pattern_formatter>()),
          console(STDOUT_FILENO) {}

    void log(const log_msg& _message) override {
        if (is_over) {
            return;
        }
        if (console.is_closed()) {
            is_over = true;
            tell(*file, "log", __LINE__,
                 QStringLiteral(
                     "Nobody can read standard output any more, lines go to this file only"));
            return;
        }
        spdlog::memory_buf_t text;
        formatter->format(_message, text);
        console.write(std::string(text.data(), text.size()));
    }
    void flush() override {}
    void set_pattern(const std::string& _pattern) override {
        set_formatter(std::make_unique<spdlog::pattern_formatter>(_pattern));
    }
    void set_formatter(std::unique_ptr<spdlog::formatter> _formatter) override {
        formatter = std::move(_formatter);
    }

 private:
    const std::shared_ptr<sink> file;
    std::unique_ptr<spdlog::formatter> formatter;
    bool is_over = false;
    console_t console;
};

}  // namespace

// spdlog's scale grows with gravity; the highest of its values is named "off" but compares like
// every other one.
int on_spdlog_scale(int _level) {
    return 6 - std::clamp(_level, 0, 6);
}

std::shared_ptr<sink> make_file_sink(const log_settings_t& _settings) {
    auto made = std::make_shared<file_sink_t>(_settings);
    made->set_level(threshold(_settings.file_level));
    return made;
}

std::shared_ptr<sink> make_console_sink(const log_settings_t& _settings,
                                        const std::shared_ptr<sink>& _file) {
    auto made = std::make_shared<console_sink_t>(_file);
    made->set_level(threshold(_settings.stdout_level));
    return made;
}

}  // namespace utility::logs

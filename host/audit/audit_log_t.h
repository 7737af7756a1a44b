#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "audit/audit_file_t.h"
#include "audit/repeats_t.h"
#include "audit/waiting_room_t.h"

namespace audit {

/// Takes what happens, from any thread and without waiting for a disk, and writes it from a thread
/// of its own: at once, and what follows soon after together. What cannot be written is kept, up to
/// a limit, and tried again.
class audit_log_t {
 public:
    struct settings_t {
        audit_file_t::settings_t file;
        repeats_t::limits_t repeats{};
        waiting_room_t::limits_t waiting{};
        std::chrono::milliseconds minute{60'000};  ///< between the lines about what was counted
        std::chrono::milliseconds retry{1'000};    ///< of a write that failed
        std::chrono::milliseconds pause{20};       ///< between two writes, unless much waits
        qsizetype most_unwritten = 1024 * 1024;    ///< bytes that wait for the disk
        /// Told that the file cannot be written, and that it is written again; one sentence, on the
        /// writer's thread.
        std::function<void(const QString& _sentence)> tell = [](const QString&) {};
    };

    /// Opens the file and starts the thread.
    static base::result_of_t<std::unique_ptr<audit_log_t>> open(const settings_t& _settings);

    /// Writes what waits and what was counted. Nobody may note anything meanwhile.
    ~audit_log_t();
    Q_DISABLE_COPY_MOVE(audit_log_t)

    void note(const entry_t& _entry);

    /// The same of entries that are made later, on the writer's thread, of @p _bytes that are held
    /// until then; @p _part see waiting_room_t.
    void note(const QString& _part, qint64 _bytes, waiting_room_t::maker_t _make);

 private:
    using clock_t = std::chrono::steady_clock;

    explicit audit_log_t(const settings_t& _settings);
    void run();
    bool wait(waiting_room_t::taken_t* _taken);
    void work_off(const waiting_room_t::taken_t& _taken);
    void add(const QByteArray& _lines);
    void write(bool _last);
    void tell_unwritten();

    const settings_t settings;
    std::mutex mutex;  ///< guards room and over
    std::condition_variable more;
    waiting_room_t room;
    bool over = false;

    // Of the writer's thread.
    audit_file_t file;
    repeats_t repeats;
    QByteArray unwritten;  ///< whole lines
    qint64 dropped = 0;    ///< lines that found no room among these
    bool is_failing = false;
    clock_t::time_point worked;  ///< something was worked off
    clock_t::time_point settled;
    clock_t::time_point tried;

    std::thread thread;  ///< the last: it uses the others
};

}  // namespace audit

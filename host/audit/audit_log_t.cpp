#include "audit/audit_log_t.h"

#include <QDateTime>
#include <utility>

#include "audit/line_text.h"
#include "audit/operations.h"

namespace audit {

using base::result_t;

namespace {

entry_t loss(const QString& _part, qint64 _count, const QString& _why) {
    entry_t entry;
    entry.time = QDateTime::currentMSecsSinceEpoch();
    entry.since = _count > 1 ? entry.time : 0;
    entry.count = _count;
    entry.user = is_outsider(_part) ? QString() : _part.section(QLatin1Char('/'), 0, 0);
    entry.operation = operation::lost;
    entry.detail = _why;
    return entry;
}

}  // namespace

base::result_of_t<std::unique_ptr<audit_log_t>> audit_log_t::open(const settings_t& _settings) {
    std::unique_ptr<audit_log_t> made(new audit_log_t(_settings));
    if (const result_t opened = made->file.open(); !opened.is_ok()) {
        return opened;
    }
    made->thread = std::thread([log = made.get()]() { log->run(); });
    return made;
}

audit_log_t::audit_log_t(const settings_t& _settings)
    : settings(_settings),
      room(_settings.waiting),
      file(_settings.file),
      repeats(_settings.repeats),
      settled(clock_t::now()) {}

audit_log_t::~audit_log_t() {
    if (!thread.joinable()) {
        return;
    }
    {
        const std::lock_guard held(mutex);
        over = true;
    }
    more.notify_one();
    thread.join();
}

void audit_log_t::note(const entry_t& _entry) {
    const entry_t entry = shortened(_entry);
    const QString owner = owner_of(entry);
    note(is_outsider(owner) ? owner : entry.user, 0, [entry]() { return QList<entry_t>{entry}; });
}

void audit_log_t::note(const QString& _part, qint64 _bytes, waiting_room_t::maker_t _make) {
    bool is_due = false;
    {
        const std::lock_guard held(mutex);
        const bool was_empty = room.is_empty();
        const bool was_filling = room.is_filling();
        room.push(_part, _bytes, std::move(_make));
        is_due = was_empty || room.is_filling() != was_filling;
    }
    // Else the writer is awake, or about to be, and takes all.
    if (is_due) {
        more.notify_one();
    }
}

void audit_log_t::run() {
    waiting_room_t::taken_t taken;
    bool goes_on = true;
    while (goes_on) {
        goes_on = wait(&taken);
        work_off(taken);
        if (!goes_on || clock_t::now() - settled >= settings.minute) {
            settled = clock_t::now();
            add(repeats.settle(QDateTime::currentMSecsSinceEpoch()));
        }
        write(!goes_on);
    }
}

/// Until there is something to do; false: it is over.
bool audit_log_t::wait(waiting_room_t::taken_t* _taken) {
    const clock_t::time_point due = is_failing ? tried + settings.retry : settled + settings.minute;
    std::unique_lock held(mutex);
    more.wait_until(held, due, [this]() { return over || !room.is_empty(); });
    // Each time this thread wakes up costs more than an entry.
    more.wait_until(held, worked + settings.pause, [this]() { return over || room.is_filling(); });
    *_taken = room.take();
    worked = clock_t::now();
    return !over;
}

void audit_log_t::work_off(const waiting_room_t::taken_t& _taken) {
    for (const auto& make : _taken.makers) {
        const QList<entry_t> entries = make();
        for (const entry_t& entry : entries) {
            add(repeats.take(entry));
        }
    }
    for (auto lost = _taken.lost.begin(); lost != _taken.lost.end(); ++lost) {
        add(repeats.take(loss(lost.key(), *lost, QStringLiteral("more than could be noted"))));
    }
}

void audit_log_t::add(const QByteArray& _lines) {
    if (unwritten.size() + _lines.size() > settings.most_unwritten) {
        dropped += _lines.count('\n');
    } else {
        unwritten += _lines;
    }
}

void audit_log_t::write(bool _last) {
    const bool is_early = is_failing && clock_t::now() - tried < settings.retry;
    if ((unwritten.isEmpty() && dropped == 0) || (is_early && !_last)) {
        return;
    }
    tried = clock_t::now();
    const result_t written = file.write(unwritten);
    if (!written.is_ok()) {
        if (!std::exchange(is_failing, true)) {
            settings.tell(written.error);
        }
        return;
    }
    unwritten.clear();
    tell_unwritten();
    if (std::exchange(is_failing, false)) {
        settings.tell(QStringLiteral("The audit is written again."));
    }
}

void audit_log_t::tell_unwritten() {
    if (const qint64 count = std::exchange(dropped, 0); count > 0) {
        unwritten = line_of(loss({}, count, QStringLiteral("lines that could not be written")));
        if (file.write(unwritten).is_ok()) {
            unwritten.clear();
        }
    }
}

}  // namespace audit

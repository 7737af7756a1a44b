#include "audit_command.h"

#include <QDateTime>
#include <QDir>
#include <optional>
#include <utility>

#include "audit/audit_reader_t.h"
#include "audit/file_name.h"
#include "audit/people_text.h"
#include "commands.h"
#include "database/name_rules.h"
#include "output_t.h"
#include "program/say.h"

namespace torlan {

namespace {

using audit::audit_reader_t;
using base::result_t;

result_t read_since(const QString& _text, qint64 _now, audit_call_t* _call) {
    const auto since = audit::since_of(_text, _now);
    if (!since) {
        return result_t::failed(
            QStringLiteral("--since takes a time such as 10m, 2h, 3d or 2026-01-31T12:00:00Z, "
                           "not %1.")
                .arg(database::quoted(_text)));
    }
    _call->filter.since = *since;
    return {};
}

/// The lines of several readers, by time.
class merged_t {
 public:
    void add(audit_reader_t* _reader) { heads.append({_reader, _reader->next()}); }

    std::optional<audit_reader_t::line_t> next() {
        head_t* first = nullptr;
        for (head_t& head : heads) {
            const bool is_earlier =
                head.line && (first == nullptr || head.line->entry.time < first->line->entry.time);
            first = is_earlier ? &head : first;
        }
        return first == nullptr ? std::nullopt : std::exchange(first->line, first->reader->next());
    }

 private:
    struct head_t {
        audit_reader_t* reader;
        std::optional<audit_reader_t::line_t> line;
    };

    QList<head_t> heads;
};

QByteArray text_of(const audit_reader_t::line_t& _line, bool _as_json) {
    return _as_json ? _line.text : audit::people_text(_line.entry).toUtf8() + '\n';
}

result_t write_lines(merged_t _lines, const audit_call_t& _call) {
    output_t output;
    while (const auto line = output.is_read() ? _lines.next() : std::nullopt) {
        if (_call.filter.matches(line->entry)) {
            output.add(text_of(*line, _call.as_json));
        }
    }
    return output.finish();
}

result_t nothing_there(const QString& _logs) {
    return result_t::failed(
        QStringLiteral("There is no audit in %1: no server has run here, or its log is elsewhere; "
                       "see --logs DIR.")
            .arg(_logs));
}

}  // namespace

base::result_of_t<audit_call_t> read_audit_call(const call_t& _typed, qint64 _now) {
    audit_call_t call{{_typed["user"], _typed["element"]}, _typed["logs"], _typed.has("json")};
    const result_t read =
        _typed.has("since") ? read_since(_typed["since"], _now, &call) : result_t();
    if (!read.is_ok()) {
        return read;
    }
    return call;
}

namespace {

outcome_t show_audit(const call_t& _typed) {
    const auto call = read_audit_call(_typed, QDateTime::currentMSecsSinceEpoch());
    if (!call.is_ok()) {
        return {status_usage, call.error};
    }
    const QString logs = call.value.logs.isEmpty()
                             ? QDir(_typed.data).filePath(QStringLiteral("logs"))
                             : call.value.logs;
    audit_reader_t server;
    audit_reader_t settings;
    result_t result = server.open(logs, audit::server_file, call.value.filter.since);
    if (result.is_ok()) {
        result = settings.open(_typed.data, audit::settings_file, call.value.filter.since);
    }
    if (result.is_ok() && !server.is_there() && !settings.is_there()) {
        result = nothing_there(logs);
    }
    if (!result.is_ok()) {
        return result;
    }
    merged_t lines;
    lines.add(&server);
    lines.add(&settings);
    result = write_lines(lines, call.value);
    if (const qint64 broken = server.broken() + settings.broken(); broken > 0) {
        say(stderr, QStringLiteral("%1 lines are broken and left out.").arg(broken));
    }
    return result;
}

}  // namespace

commands_t audit_commands() {
    return {
        {.name = "audit",
         .arguments = "",
         .help = "who did what, the oldest first",
         .run = show_audit,
         .options = {{"user", "USER", "what this user did"},
                     {"element", "ELEMENT", "what was done with this element"},
                     {"since", "TIME", "10m, 2h, 3d ago or since 2026-01-31T12:00:00Z"},
                     {"logs", "DIR", "the server's logs are there, not in the data folder"},
                     json_option},
         .examples = {QStringLiteral("audit --user alice --since 2h"),
                      QStringLiteral("audit --element e-lamp --json")}},
    };
}

}  // namespace torlan

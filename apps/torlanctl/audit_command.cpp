#include "audit_command.h"

#include <QDateTime>
#include <QDir>
#include <optional>
#include <utility>

#include "audit/audit_reader_t.h"
#include "audit/file_name.h"
#include "audit/people_text.h"
#include "database/name_rules.h"
#include "program/say.h"
#include "program/standard_streams.h"

namespace torlan {

namespace {

using audit::audit_reader_t;
using base::result_t;

constexpr qsizetype bytes_at_once = 64 * 1024;

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

/// Where the value of an option goes; null: there is no such option.
QString* place_of(const QString& _option, audit_call_t* _call, QString* _since) {
    if (_option == QLatin1String("--user")) {
        return &_call->filter.user;
    }
    if (_option == QLatin1String("--element")) {
        return &_call->filter.element;
    }
    if (_option == QLatin1String("--logs")) {
        return &_call->logs;
    }
    return _option == QLatin1String("--since") ? _since : nullptr;
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
    QByteArray text;
    while (const auto line = _lines.next()) {
        if (_call.filter.matches(line->entry)) {
            text += text_of(*line, _call.as_json);
        }
        if (text.size() >= bytes_at_once) {
            if (const result_t written = write_output(text); !written.is_ok()) {
                return written;
            }
            text.clear();
        }
    }
    return write_output(text);
}

result_t nothing_there(const QString& _logs) {
    return result_t::failed(
        QStringLiteral("There is no audit in %1: no server has run here, or its log is elsewhere; "
                       "see --logs DIR.")
            .arg(_logs));
}

}  // namespace

base::result_of_t<audit_call_t> parse_audit_call(const QStringList& _arguments, qint64 _now) {
    audit_call_t call;
    QString since;
    QStringList words = _arguments;
    while (!words.isEmpty()) {
        const QString word = words.takeFirst();
        const QString option = word.section(QLatin1Char('='), 0, 0);
        const bool has_value = word != option;
        if (option == QLatin1String("--json") && !has_value) {
            call.as_json = true;
            continue;
        }
        QString* const place = place_of(option, &call, &since);
        if (place == nullptr) {
            return result_t::failed(
                QStringLiteral("audit has no option %1.").arg(database::quoted(option)));
        }
        if (!has_value && words.isEmpty()) {
            return result_t::failed(QStringLiteral("%1 takes a value.").arg(option));
        }
        *place = has_value ? word.mid(option.size() + 1) : words.takeFirst();
    }
    const result_t read = since.isEmpty() ? result_t() : read_since(since, _now, &call);
    if (!read.is_ok()) {
        return read;
    }
    return call;
}

result_t check_audit_call(const QStringList& _arguments) {
    return parse_audit_call(_arguments, QDateTime::currentMSecsSinceEpoch());
}

result_t show_audit(const QString& _data, const QStringList& _arguments) {
    const auto call = parse_audit_call(_arguments, QDateTime::currentMSecsSinceEpoch());
    if (!call.is_ok()) {
        return call;
    }
    const QString logs =
        call.value.logs.isEmpty() ? QDir(_data).filePath(QStringLiteral("logs")) : call.value.logs;
    audit_reader_t server;
    audit_reader_t settings;
    result_t result = server.open(logs, audit::server_file, call.value.filter.since);
    if (result.is_ok()) {
        result = settings.open(_data, audit::settings_file, call.value.filter.since);
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

}  // namespace torlan

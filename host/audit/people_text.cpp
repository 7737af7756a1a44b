#include "audit/people_text.h"

#include <QStringList>

#include "audit/line_text.h"
#include "database/name_rules.h"

namespace audit {

namespace {

/// Names as they are, everything else quoted.
QString word_of(const QString& _text) {
    return database::identifier_error(_text).isEmpty() ? _text : database::quoted(_text);
}

QString what(const entry_t& _entry) {
    QStringList words{database::shown(_entry.operation)};
    for (const QString& name : {_entry.element, _entry.function}) {
        if (!name.isEmpty()) {
            words.append(word_of(name));
        }
    }
    if (!_entry.value.isEmpty()) {
        words.append(QStringLiteral("= ") + database::quoted(_entry.value));
    }
    return words.join(QLatin1Char(' '));
}

QStringList notes(const entry_t& _entry) {
    QStringList found;
    const auto add = [&found](const char* _what, const QString& _text) {
        if (!_text.isEmpty()) {
            found.append(QLatin1String(_what) + database::quoted(_text));
        }
    };
    add("", _entry.detail);
    add("client ", _entry.client);
    add("calls itself ", _entry.called);
    add("from ", _entry.address);
    add("by the ", _entry.by);
    add("uuid ", _entry.uuid);
    if (_entry.count != 1) {
        found.append(QStringLiteral("%1 times since %2")
                         .arg(QString::number(_entry.count), time_text(_entry.since)));
    }
    return found;
}

}  // namespace

QString people_text(const entry_t& _entry) {
    const QString user = _entry.user.isEmpty() ? QStringLiteral("-") : word_of(_entry.user);
    QString text =
        time_text(_entry.time) + QStringLiteral("  ") + user + QStringLiteral("  ") + what(_entry);
    if (!_entry.result.isEmpty()) {
        text += QStringLiteral(": ") + database::shown(_entry.result);
    }
    const QStringList more = notes(_entry);
    if (!more.isEmpty()) {
        text += QStringLiteral(" (") + more.join(QStringLiteral(", ")) + QLatin1Char(')');
    }
    return text;
}

}  // namespace audit

#include "settings_audit_t.h"

#include <QDateTime>
#include <QFileInfo>

#include "audit/file_name.h"
#include "audit/operations.h"
#include "program/say.h"

namespace torlan {

settings_audit_t::settings_audit_t(QObject* _parent) : QObject(_parent) {}

settings_audit_t::~settings_audit_t() = default;

base::result_t settings_audit_t::open(const QString& _settings_file) {
    audit::audit_log_t::settings_t given;
    given.file.folder = QFileInfo(_settings_file).absolutePath();
    given.file.name = audit::settings_file;
    // From the writer's thread, and one thread speaks.
    given.tell = [this](const QString& _sentence) {
        QMetaObject::invokeMethod(
            this, [_sentence]() { say(stderr, _sentence); }, Qt::QueuedConnection);
    };
    auto opened = audit::audit_log_t::open(given);
    log = std::move(opened.value);
    return opened;
}

void settings_audit_t::note_put(const QString& _path, int _status) {
    audit::entry_t entry;
    // Who may is the settings' own user or root; which of them, nobody has to know.
    entry.by = QStringLiteral("settings' user");
    entry.detail = _path;
    note(entry, _status);
}

void settings_audit_t::note_stranger(std::optional<uid_t> _user) {
    audit::entry_t entry;
    entry.by = _user ? QStringLiteral("system user %1").arg(*_user)
                     : QStringLiteral("unknown system user");
    note(entry, 403);
}

void settings_audit_t::note(audit::entry_t _entry, int _status) {
    if (!log) {
        return;
    }
    _entry.time = QDateTime::currentMSecsSinceEpoch();
    _entry.operation = audit::operation::setting;
    _entry.result = QString::number(_status);
    log->note(_entry);
}

}  // namespace torlan

#pragma once

#include <sys/types.h>

#include <QObject>
#include <memory>
#include <optional>

#include "audit/audit_log_t.h"

namespace torlan {

/// Which settings were changed and who was refused, in a file beside the settings that torlanctl
/// shows with the server's. No value is in it: some are secrets. Main thread.
class settings_audit_t : public QObject {
    Q_OBJECT

 public:
    explicit settings_audit_t(QObject* _parent = nullptr);
    ~settings_audit_t() override;

    base::result_t open(const QString& _settings_file);

    /// Somebody who may asked to change what lies at @p _path.
    void note_put(const QString& _path, int _status);
    void note_stranger(std::optional<uid_t> _user);

 private:
    void note(audit::entry_t _entry, int _status);

    std::unique_ptr<audit::audit_log_t> log;
};

}  // namespace torlan

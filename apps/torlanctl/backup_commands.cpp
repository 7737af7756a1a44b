#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <array>
#include <memory>

#include "base/sync_path.h"
#include "commands.h"
#include "confirmation.h"
#include "opened_store.h"
#include "process/file_lock_t.h"
#include "process/holder_text.h"
#include "process/restored_folder_t.h"
#include "process/trusted_path.h"
#include "program/file_reader_t.h"
#include "program/private_file.h"
#include "program/progress_line_t.h"
#include "store/backup.h"

/// Copies of an installation with its settings, and back.
namespace torlan {

namespace {

using base::result_of_t;
using base::result_t;
using process::file_lock_t;
using process::restored_folder_t;

constexpr int busy_ms = 5000;
constexpr qint64 most_settings_bytes = 4 << 20;

const QString settings_name = QStringLiteral("settings.json");

/// Empty when there are none.
result_of_t<QByteArray> settings_of(const call_t& _call) {
    const QString path = QDir(_call.data).filePath(settings_name);
    return QFileInfo::exists(path) ? file_reader_t(path, most_settings_bytes).read()
                                   : result_of_t<QByteArray>(QByteArray());
}

outcome_t write_backup(const call_t& _call) {
    database::store::sqlite_store_t store;
    const result_t opened = open_store(&store, _call);
    const auto settings = opened.is_ok() ? settings_of(_call) : result_of_t<QByteArray>(opened);
    progress_line_t line;
    line.show(QStringLiteral("copying %1 MiB").arg(QFileInfo(database_file(_call)).size() >> 20));
    return settings.is_ok() ? outcome_t(database::store::write_backup(
                                  database_file(_call), _call["FILE"], settings.value, busy_ms))
                            : outcome_t(settings);
}

/// Keeps every server from the folder. The order is that in which a supervisor's start takes them.
class folder_locks_t {
 public:
    explicit folder_locks_t(const QString& _folder) {
        const std::array names{"supervisor.lock", "settings.json.lock", "torlan.lock"};
        for (std::size_t i = 0; i < names.size(); ++i) {
            locks.at(i) =
                std::make_unique<file_lock_t>(QDir(_folder).filePath(QLatin1String(names.at(i))));
        }
    }

    result_t take(const QString& _folder) {
        for (const auto& lock : locks) {
            const file_lock_t::state_t state = lock->take();
            if (state == file_lock_t::state_t::held) {
                return result_t::failed(
                    QStringLiteral("The folder %1 is in use by %2: stop it first.")
                        .arg(_folder, process::holder_text(*lock)));
            }
            if (state != file_lock_t::state_t::ours) {
                return result_t::failed(
                    QStringLiteral("The folder %1 cannot be written.").arg(_folder));
            }
        }
        return {};
    }

 private:
    std::array<std::unique_ptr<file_lock_t>, 3> locks;
};

/// Puts the new files beside the old ones.
result_t prepare(const call_t& _call, restored_folder_t* _folder) {
    const result_t prepared = _folder->prepare();
    const auto settings =
        prepared.is_ok()
            ? database::store::unpack_backup(
                  _call["FILE"], _folder->prepared(QStringLiteral("installation.db")), busy_ms)
            : result_of_t<QByteArray>(prepared);
    return settings.is_ok() && !settings.value.isEmpty()
               ? write_private_file(_folder->prepared(settings_name), settings.value)
               : result_t(settings);
}

result_t replace(const call_t& _call) {
    const QString folder = QDir(_call.data).absolutePath();
    if (const result_t ours = process::check_only_ours(folder); !ours.is_ok()) {
        return ours;
    }
    folder_locks_t locks(folder);
    result_t result = locks.take(folder);
    restored_folder_t restored(folder);
    if (result.is_ok()) {
        result = restored.finish();  // of one that was killed
    }
    if (!result.is_ok()) {
        return result;
    }
    result = prepare(_call, &restored);
    if (result.is_ok()) {
        result = restored.commit();
    }
    if (!result.is_ok()) {
        restored.give_up();
        return result;
    }
    return restored.finish();
}

outcome_t restore_backup(const call_t& _call) {
    if (!QFileInfo(_call.data).isDir()) {
        return result_t::failed(QStringLiteral("There is no folder %1.").arg(_call.data));
    }
    const result_t agreed = confirm(
        _call,
        QStringLiteral("This replaces the installation and the settings in %1.").arg(_call.data));
    return agreed.is_ok() ? replace(_call) : agreed;
}

}  // namespace

commands_t backup_commands() {
    return {
        {.name = "backup",
         .arguments = "FILE",
         .help = "write the installation and the settings of this moment into a new file",
         .run = write_backup,
         .examples = {QStringLiteral("backup home-monday.backup")},
         .more =
             "The server may run. What it has answered but not saved yet is not in it. It holds "
             "password hashes and is readable for its owner only."},
        {.name = "restore",
         .arguments = "FILE",
         .help = "put a backup in the place of what is there; no server may run",
         .run = restore_backup,
         .options = {yes_option},
         .examples = {QStringLiteral("restore home-monday.backup --yes")},
         .more = "All of it or nothing, whenever it is killed."},
    };
}

}  // namespace torlan

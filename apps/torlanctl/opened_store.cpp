#include "opened_store.h"

#include <QDir>
#include <QFileInfo>

#include "process/file_lock_t.h"
#include "process/restored_folder_t.h"
#include "program/say.h"
#include "store/database_check.h"

namespace torlan {

using base::result_t;
using database::store::sqlite_store_t;

QString database_file(const call_t& _call) {
    return QDir(_call.data).filePath(QStringLiteral("installation.db"));
}

namespace {

/// What a killed restoration has committed counts; a server that has the folder has seen to it.
result_t finish_restoration(const QString& _folder) {
    process::restored_folder_t restored(_folder);
    process::file_lock_t lock(QDir(_folder).filePath(QStringLiteral("torlan.lock")));
    return restored.is_unfinished() && lock.take() == process::file_lock_t::state_t::ours
               ? restored.finish()
               : result_t();
}

}  // namespace

void tell_notes(sqlite_store_t* _store) {
    for (const QString& sentence : _store->take_notes()) {
        say(stderr, sentence);
    }
}

result_t open_store(sqlite_store_t* _store, const call_t& _call, missing_t _missing) {
    if (!QFileInfo(_call.data).isDir()) {
        return result_t::failed(QStringLiteral("There is no folder %1.").arg(_call.data));
    }
    if (const result_t finished = finish_restoration(_call.data); !finished.is_ok()) {
        return finished;
    }
    const QString path = database_file(_call);
    const auto exists = database::store::holds_installation(path, 5000);
    if (_missing == missing_t::refuse && exists.is_ok() && !exists.value) {
        return result_t::failed(
            QStringLiteral("There is no installation in %1: import one first.").arg(_call.data));
    }
    const result_t opened = exists.is_ok() ? _store->open(path) : result_t(exists);
    tell_notes(_store);
    return opened;
}

}  // namespace torlan

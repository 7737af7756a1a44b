#pragma once

#include "line/call_t.h"
#include "store/sqlite_store_t.h"
#include "store/store_editor_t.h"

/// The database of the folder that a call names.
namespace torlan {

QString database_file(const call_t& _call);

/// Tells people what the store has noted.
void tell_notes(database::store::sqlite_store_t* _store);

enum class missing_t { refuse, create };

/// Opens it; where there is none, it is refused or made.
base::result_t open_store(database::store::sqlite_store_t* _store, const call_t& _call,
                          missing_t _missing = missing_t::refuse);

/// Opens it, has @p _edit change it, and checks that it was not replaced meanwhile.
template <typename edit_t>
base::result_t edit(const call_t& _call, edit_t _edit) {
    database::store::sqlite_store_t store;
    const base::result_t opened = open_store(&store, _call);
    if (!opened.is_ok()) {
        return opened;
    }
    database::store::store_editor_t editor(store.connection());
    const base::result_t edited = _edit(editor);
    return edited.is_ok() ? store.connection().check_place() : edited;
}

}  // namespace torlan

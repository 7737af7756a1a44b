#include "meant_name.h"

#include "database/name_rules.h"
#include "line/nearest_word.h"
#include "opened_store.h"
#include "store/stored_names.h"

namespace torlan {

using database::store::kind_t;

namespace {

/// Names that begin as the typed one does are enough of a large installation.
constexpr int most_names = 2000;

/// The names of these that are near by their beginning, or by anything else.
QStringList names_like(const call_t& _call, kind_t _kind, const QString& _typed) {
    const QString file = database_file(_call);
    return database::store::stored_names(file, _kind, _typed.left(2), most_names) +
           database::store::stored_names(file, _kind, {}, most_names);
}

}  // namespace

QString with_meant_name(const call_t& _call, const QString& _refusal) {
    constexpr kind_t kinds[] = {kind_t::user, kind_t::element, kind_t::item, kind_t::scenario,
                                kind_t::thermostat};
    for (const kind_t kind : kinds) {
        const QString word = database::store::word_of(kind);
        const QString typed = _call[word.toUpper().toLatin1().constData()];
        const QString end = QStringLiteral("%1 %2.").arg(word, database::shown(typed));
        const bool is_it =
            !typed.isEmpty() && (_refusal.endsWith(QStringLiteral("There is no ") + end) ||
                                 _refusal.endsWith(QStringLiteral("Not found ") + end));
        if (is_it) {
            return _refusal + suggestion(typed, names_like(_call, kind, typed));
        }
    }
    return _refusal;
}

}  // namespace torlan

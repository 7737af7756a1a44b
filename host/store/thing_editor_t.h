#pragma once

#include <QStringList>
#include <functional>

#include "installation/installation_t.h"
#include "store/connection_t.h"
#include "store/kind_t.h"

namespace database::store {

/// Adds, changes, renames and removes single elements, items, scenarios and thermostats, each in a
/// transaction of its own. The rules are those of documents, and so are the sentences. A running
/// server sees every change.
class thing_editor_t {
 public:
    explicit thing_editor_t(connection_t& _connection) : connection(_connection) {}

    /// Changes the thing, which is alone in what it gets; a new one has nothing set.
    using edit_t = std::function<::base::result_t(installation::installation_t* _thing)>;

    ::base::result_t add(kind_t _kind, const QString& _id, const edit_t& _edit);
    ::base::result_t change(kind_t _kind, const QString& _id, const edit_t& _edit);
    /// What refers to it follows.
    ::base::result_t rename(kind_t _kind, const QString& _id, const QString& _new_id);
    /// Refuses, and says who, while something refers to it. Grants on an element go with it.
    ::base::result_t remove(kind_t _kind, const QString& _id);

    /// What refers to it: "element e-lamp (execute)".
    ::base::result_of_t<QStringList> referrers(kind_t _kind, const QString& _id);
    /// A failure when there is none.
    ::base::result_t check_there(kind_t _kind, const QString& _id);

 private:
    ::base::result_of_t<bool> exists(kind_t _kind, const QString& _id);
    ::base::result_t check_free(kind_t _kind, const QString& _id);
    ::base::result_t check(const installation::installation_t& _thing);
    ::base::result_t check_unused(kind_t _kind, const QString& _id);
    ::base::result_t run_edit(kind_t _kind, const QString& _id, const edit_t& _edit, bool _is_new);

    connection_t& connection;
};

}  // namespace database::store

#pragma once

#include <QString>

#include "base/result_t.h"

namespace process {

/// A data folder whose database and settings are replaced together: the new ones are put into a
/// folder inside, and its renaming is the moment from which they count. Whoever opens the data
/// folder next, holding its lock, finishes what was not: killed at any time, the old or the new
/// state is there, never half of each.
class restored_folder_t {
 public:
    explicit restored_folder_t(const QString& _folder) : folder(_folder) {}

    /// An empty folder for the new files, in the place of what a broken-off one has left.
    base::result_t prepare();
    /// Where a new file goes; its name is that in the data folder, "installation.db" or
    /// "settings.json", both on the medium before commit().
    QString prepared(const QString& _name) const;
    /// Takes the prepared folder out.
    void give_up();

    /// From here on they count. finish() follows.
    base::result_t commit();
    bool is_unfinished() const;
    /// Moves what was committed into its places; nothing to do is no failure. To be called by
    /// whoever holds the folder's lock, before anybody opens a file in it.
    base::result_t finish();

 private:
    QString committed() const;
    base::result_t move(const QString& _name);

    const QString folder;
};

}  // namespace process

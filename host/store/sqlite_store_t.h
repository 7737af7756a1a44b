#pragma once

#include <QStringList>
#include <utility>

#include "installation/installation_t.h"
#include "store/connection_t.h"

namespace database::store {

/// The installation on disk, for programs that read or write it as a whole; single changes are
/// store_editor_t's. May be used while the server runs: the server sees what was written.
class sqlite_store_t {
 public:
    /// Opens or creates the file; see open_database(). Waits up to five seconds for other writers.
    ::base::result_t open(const QString& _path);

    /// Reads the whole installation of one moment, as far as a document may hold it.
    ::base::result_of_t<installation::installation_t> read();

    /// What people should know of what was done since the last call: a migration, what was left
    /// out or cleaned. One sentence for each thing.
    QStringList take_notes() { return std::exchange(sentences, {}); }

    /// Elements and thermostats that are noted one by one. Whoever changes more at once, as
    /// replace() does, leaves word that everything is to be read again.
    static constexpr int told_singly = 64;

    /// Puts @p _installation in the place of what is there: all of it or, on an error, nothing.
    /// Touches the rows that differ. A user without a password keeps that of the user with the same
    /// id and name.
    ::base::result_t replace(const installation::installation_t& _installation);

    connection_t& connection() { return link; }

 private:
    ::base::result_t keep_passwords(installation::installation_t* _next);
    ::base::result_t write_difference(const installation::installation_t& _next);

    connection_t link;
    QStringList sentences;
};

}  // namespace database::store

#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace database {
class database_t;
}
namespace database::live {
class write_gate_t;
}

namespace torlan {

/// A request that a new user can make by hand: somebody who may read and write an element, and a
/// value for one of its functions.
struct first_request_t {
    QString user_id;
    QString username;
    QString element;
    QString function;
    QString value;  ///< another one than it has now

    /// Nothing when nobody may read and write any connected element. A lamp goes before all else.
    /// @param _gate knows what items take
    static std::optional<first_request_t> find(const database::database_t& _database,
                                               const database::live::write_gate_t& _gate);

    /// Lines to paste into a shell; the password is asked for, as command lines are read by
    /// everybody.
    /// @param _torlanctl the program, with what says which data folder
    /// @param _password empty: not known
    QString text(const QStringList& _torlanctl, const QString& _password) const;
};

}  // namespace torlan

#pragma once

#include <QString>
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

    /// Lines to paste into a shell. @p _password empty: a placeholder stands there.
    QString text(quint16 _port, const QString& _password) const;
};

}  // namespace torlan

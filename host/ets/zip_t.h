#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QSet>
#include <QStringList>
#include <functional>

#include "base/result_t.h"
#include "ets/limits_t.h"

struct archive;

namespace ets {

/// A zip in memory. Only one with its table of contents is read: what is cut off has none.
///
/// Nothing of the third party that does it is seen here.
class zip_t {
 public:
    /// What is done with one file of it, which is read as a stream; what it returns ends the round
    /// unless it is ok.
    using visit_t = std::function<base::result_t(const QString& _name, QIODevice* _file)>;

    /// @param _left bytes that may be unpacked, of all zips together; counted down
    zip_t(QByteArray _bytes, const limits_t& _limits, qint64* _left);

    /// Reads the table of contents: the names with "/", in any order. No name twice.
    base::result_of_t<QStringList> names();

    /// Unpacks the files of these names one after the other; the table has been read. A failure's
    /// sentence begins with the name of the file: "P-1/0.xml is damaged (...)".
    base::result_t visit(const QSet<QString>& _wanted, const visit_t& _visit);

    /// From here on; empty: none.
    void set_password(const QByteArray& _password) { password = _password; }

    /// The last visit() failed because of the password.
    bool is_locked() const { return locked; }

 private:
    base::result_t each(const std::function<base::result_t(const QString&, archive*)>& _do);

    const QByteArray bytes;
    const limits_t limits;
    qint64* const left;
    QByteArray password;
    bool locked = false;
};

}  // namespace ets

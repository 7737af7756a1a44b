#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "audit/entry_t.h"
#include "base/result_t.h"

namespace audit {

/// Reads the lines of a file and of its former ones, the oldest first, while they are written and
/// rotated by others.
class audit_reader_t {
 public:
    struct line_t {
        entry_t entry;
        QByteArray text;  ///< as it stands there, with its line end
    };

    /// @p _since: files that were last written before need not be read.
    base::result_t open(const QString& _folder, const QString& _name, qint64 _since);

    /// Whether there is any file.
    bool is_there() const { return found; }

    /// The next line that is one; nothing: that was all.
    std::optional<line_t> next();

    /// Lines so far that are none, as a power cut leaves them.
    qint64 broken() const { return not_read; }

 private:
    base::result_t take(const QString& _path, qint64 _since);

    std::vector<std::unique_ptr<QFile>> files;  ///< the oldest last
    QList<std::pair<quint64, quint64>> held;    ///< device and inode of these
    bool found = false;
    qint64 not_read = 0;
};

}  // namespace audit

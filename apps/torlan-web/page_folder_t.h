#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include "base/result_t.h"

namespace torlan {

/// The files of a page, all of them in memory: no request reaches the disk, so none finds a way out
/// of the folder, and a page that is replaced meanwhile stays in one piece.
class page_folder_t {
 public:
    struct file_t {
        QByteArray type;  ///< as Content-Type has it
        QByteArray bytes;
    };
    /// Of one file; the page's own are far below.
    static constexpr qint64 max_bytes = 4 * 1024 * 1024;

    /// Reads the folder @p _path with the folders in it: files of the types that a page is made
    /// of; others, and hidden ones, are not looked at. Fails without an index.html.
    base::result_t read(const QString& _path);

    /// By the path of an address, "/" for the page itself; null: there is none.
    const file_t* find(const QByteArray& _path) const;

 private:
    QHash<QByteArray, file_t> files;
};

}  // namespace torlan

#include "page_folder_t.h"

#include <QDirIterator>
#include <QFile>

namespace torlan {

namespace {

/// Empty: no type that a page is made of.
QByteArray type_of(const QString& _suffix) {
    static const QHash<QString, QByteArray> types{
        {QStringLiteral("html"), "text/html; charset=utf-8"},
        {QStringLiteral("css"), "text/css; charset=utf-8"},
        {QStringLiteral("js"), "text/javascript; charset=utf-8"},
        {QStringLiteral("svg"), "image/svg+xml"},
        {QStringLiteral("png"), "image/png"}};
    return types.value(_suffix);
}

}  // namespace

base::result_t page_folder_t::read(const QString& _path) {
    QHash<QByteArray, file_t> found;
    QDirIterator each(_path, QDir::Files, QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString name = each.next();
        const QByteArray type = type_of(each.fileInfo().suffix());
        if (type.isEmpty()) {
            continue;
        }
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly) || file.size() > max_bytes) {
            return base::result_t::failed(
                QStringLiteral("The page's file %1 cannot be read: %2.")
                    .arg(name, file.isOpen() ? QStringLiteral("it is larger than 4 MiB")
                                             : file.errorString()));
        }
        found.insert(name.mid(_path.size()).toUtf8(), {type, file.readAll()});
    }
    if (!found.contains("/index.html")) {
        return base::result_t::failed(
            QStringLiteral("There is no page in %1: index.html is missing.").arg(_path));
    }
    files = found;
    return {};
}

const page_folder_t::file_t* page_folder_t::find(const QByteArray& _path) const {
    const auto file = files.constFind(_path == "/" ? QByteArray("/index.html") : _path);
    return file == files.cend() ? nullptr : &*file;
}

}  // namespace torlan

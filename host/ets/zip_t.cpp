#include "ets/zip_t.h"

#include <archive.h>
#include <archive_entry.h>

#include <memory>

#include "ets/zip_entry_t.h"

namespace ets {

using base::result_t;

namespace {

struct closer_t {
    void operator()(archive* _archive) const { ::archive_read_free(_archive); }
};
using archive_t = std::unique_ptr<archive, closer_t>;

QString words_of(archive* _archive) {
    const char* const words = ::archive_error_string(_archive);
    return words == nullptr ? QStringLiteral("no reason given") : QString::fromUtf8(words);
}

QString name_of(archive_entry* _entry) {
    const char* const name = ::archive_entry_pathname(_entry);
    // Some programs write the separators of another system.
    return QString::fromUtf8(name).replace(u'\\', u'/');
}

result_t damaged(archive* _archive) {
    return result_t::failed(
        QStringLiteral("The zip is damaged or cut off (%1).").arg(words_of(_archive)));
}

}  // namespace

zip_t::zip_t(QByteArray _bytes, const limits_t& _limits, qint64* _left)
    : bytes(std::move(_bytes)), limits(_limits), left(_left) {}

result_t zip_t::each(const std::function<result_t(const QString&, archive*)>& _do) {
    const archive_t reader(::archive_read_new());
    // Not the other way to read zips, from the front without the table: it hands out the first
    // files of one that is cut off.
    ::archive_read_support_format_zip_seekable(reader.get());
    if (!password.isEmpty()) {
        ::archive_read_add_passphrase(reader.get(), password.constData());
    }
    if (::archive_read_open_memory(reader.get(), bytes.constData(),
                                   static_cast<size_t>(bytes.size())) != ARCHIVE_OK) {
        return damaged(reader.get());
    }
    archive_entry* entry = nullptr;
    for (int count = 1;; ++count) {
        const int status = ::archive_read_next_header(reader.get(), &entry);
        if (status == ARCHIVE_EOF) {
            return {};
        }
        if (status < ARCHIVE_WARN) {
            return damaged(reader.get());
        }
        if (count > limits.entries) {
            return result_t::failed(
                QStringLiteral("The zip holds more than %1 files.").arg(limits.entries));
        }
        const result_t done = _do(name_of(entry), reader.get());
        if (!done.is_ok()) {
            return done;
        }
    }
}

base::result_of_t<QStringList> zip_t::names() {
    QStringList found;
    QSet<QString> known;
    const result_t read = each([&](const QString& _name, archive*) {
        if (known.contains(_name)) {
            return result_t::failed(QStringLiteral("The zip holds %1 twice.").arg(_name));
        }
        known.insert(_name);
        found.append(_name);
        return result_t();
    });
    if (!read.is_ok()) {
        return read;
    }
    return found;
}

result_t zip_t::visit(const QSet<QString>& _wanted, const visit_t& _visit) {
    locked = false;
    return each([&](const QString& _name, archive* _archive) {
        if (!_wanted.contains(_name)) {
            return result_t();
        }
        zip_entry_t file(_archive, limits.entry_bytes, left);
        const result_t done = _visit(_name, &file);
        if (!file.has_failed()) {
            return done;
        }
        locked = file.is_locked();
        return result_t::failed(_name + u' ' + file.errorString() + u'.');
    });
}

}  // namespace ets

#include "kit/zip_text.h"

#include <archive.h>
#include <archive_entry.h>

namespace kit {

namespace {

la_ssize_t append(archive*, void* _bytes, const void* _piece, size_t _size) {
    static_cast<QByteArray*>(_bytes)->append(static_cast<const char*>(_piece), qsizetype(_size));
    return la_ssize_t(_size);
}

void add(archive* _zip, const zip_file_t& _file) {
    archive_entry* const entry = ::archive_entry_new();
    ::archive_entry_set_pathname(entry, _file.name.toUtf8().constData());
    ::archive_entry_set_size(entry, _file.bytes.size());
    ::archive_entry_set_filetype(entry, AE_IFREG);
    ::archive_entry_set_perm(entry, 0644);
    ::archive_write_header(_zip, entry);
    ::archive_write_data(_zip, _file.bytes.constData(), size_t(_file.bytes.size()));
    ::archive_entry_free(entry);
}

}  // namespace

QByteArray zip_of(const QList<zip_file_t>& _files, zip_lock_t _lock, const QByteArray& _password) {
    QByteArray bytes;
    archive* const zip = ::archive_write_new();
    ::archive_write_set_format_zip(zip);
    ::archive_write_set_bytes_in_last_block(zip, 1);
    if (_lock != zip_lock_t::none) {
        ::archive_write_set_options(
            zip, _lock == zip_lock_t::aes ? "zip:encryption=aes256" : "zip:encryption=zipcrypt");
        ::archive_write_set_passphrase(zip, _password.constData());
    }
    ::archive_write_open(zip, &bytes, nullptr, append, nullptr);
    for (const zip_file_t& file : _files) {
        add(zip, file);
    }
    ::archive_write_close(zip);
    ::archive_write_free(zip);
    return bytes;
}

}  // namespace kit

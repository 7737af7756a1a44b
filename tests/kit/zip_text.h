#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace kit {

struct zip_file_t {
    QString name;
    QByteArray bytes;
};

enum class zip_lock_t { none, traditional, aes };

/// A zip with these files, in this order; the lock is on each of them.
QByteArray zip_of(const QList<zip_file_t>& _files, zip_lock_t _lock = zip_lock_t::none,
                  const QByteArray& _password = {});

}  // namespace kit

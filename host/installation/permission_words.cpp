#include "installation/permission_words.h"

#include <QStringList>

namespace database::installation {

namespace {

/// The index is the permission bits: 1 read, 2 write.
const QStringList& words() {
    static const QStringList list{"deny", "read", "write", "readwrite"};
    return list;
}

}  // namespace

std::optional<int> permission_bits(const QString& _word) {
    const qsizetype bits = words().indexOf(_word);
    return bits < 0 ? std::nullopt : std::optional(static_cast<int>(bits));
}

QString permission_word(int _bits) {
    return words().value(_bits);
}

}  // namespace database::installation

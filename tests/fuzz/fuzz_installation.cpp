// An installation document: what is taken of it is taken again from what is written of it.
#include "fuzz/fuzz_input.h"
#include "installation/document_reader.h"
#include "installation/document_writer.h"

namespace {

using namespace database::installation;

/// A password in clear is hashed with another salt each time and takes its time.
bool has_password(const QByteArray& _bytes) {
    return _bytes.contains("password\"") || _bytes.contains('\\');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    const QByteArray bytes(reinterpret_cast<const char*>(_data), qsizetype(_size));
    if (has_password(bytes)) {
        return 0;
    }
    const auto read = read_document(bytes, QStringLiteral("input"));
    FUZZ_EXPECT(read.is_ok() || read.error.startsWith(QStringLiteral("input")));
    if (!read.is_ok()) {
        return 0;
    }
    for (const auto& [user, elements] : read.value.permissions.asKeyValueRange()) {
        FUZZ_EXPECT(read.value.users.contains(user));
        for (const auto& [element, bits] : elements.asKeyValueRange()) {
            FUZZ_EXPECT(read.value.elements.contains(element) && bits >= 0 && bits <= 3);
        }
    }
    const QByteArray written = write_document(read.value, passwords_t::hashed);
    const auto again = read_document(written, QStringLiteral("written"));
    FUZZ_EXPECT(again.is_ok() && again.value == read.value);
    FUZZ_EXPECT(write_document(again.value, passwords_t::hashed) == written);
    return 0;
}

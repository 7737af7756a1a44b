// A file in the folder of drivers, and its bytes as the metadata that would be in one.
#include <sys/mman.h>
#include <unistd.h>

#include <QString>

#include "fuzz/fuzz_input.h"
#include "loader/driver_metadata_t.h"
#include "loader/elf_note_reader_t.h"

namespace {

/// A file in memory with a path.
class file_t {
 public:
    file_t() : descriptor(::memfd_create("driver", MFD_CLOEXEC)) {}
    ~file_t() { ::close(descriptor); }

    bool fill(const std::uint8_t* _data, std::size_t _size) {
        return ::ftruncate(descriptor, 0) == 0 && ::pwrite(descriptor, _data, _size, 0) >= 0;
    }
    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(descriptor); }

 private:
    const int descriptor;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    static file_t file;
    FUZZ_EXPECT(file.fill(_data, _size));
    loader::elf_note_reader_t reader(file.path());
    const auto note = reader.read();
    const bool is_refused = reader.refusal().reason != loader::refusal_reason_t::none;
    FUZZ_EXPECT(note.is_ok() != is_refused);
    const QByteArray bytes(reinterpret_cast<const char*>(_data), qsizetype(_size));
    FUZZ_EXPECT(!note.is_ok() || (!note.value.isEmpty() && bytes.contains(note.value)));
    for (const QByteArray& metadata : {note.value, bytes}) {
        const auto parsed = loader::driver_metadata_t::parse(metadata);
        FUZZ_EXPECT(!parsed || (parsed->format == 1 && parsed->qt_major == 6));
    }
    return 0;
}

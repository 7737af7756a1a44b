#pragma once

#include <QByteArray>
#include <QFile>

#include "base/result_t.h"
#include "loader/refusal_t.h"

namespace loader {

/// Reads the plugin metadata note of a shared object without loading it.
///
/// Understands ELF of 32 and 64 bits in the host's byte order. The file is not trusted: every
/// offset is checked against its size.
class elf_note_reader_t {
 public:
    explicit elf_note_reader_t(const QString& _file);

    /// The bytes of the note in section ".note.qt.metadata", header first; never empty. Once only.
    base::result_of_t<QByteArray> read();

    /// Why read() failed, its sentence included.
    const refusal_t& refusal() const { return why; }

 private:
    /// Where the fields of one ELF class stand.
    struct layout_t {
        qint64 header_size, section_table, section_entry_size;
        qint64 section_size, section_offset, section_length;
        bool wide;
    };
    struct section_t {
        quint32 name = 0;
        quint64 offset = 0, size = 0;
    };

    base::result_t open();
    base::result_t read_header();
    base::result_of_t<QByteArray> find_note();
    /// The header of section @p _index; false: outside the file.
    bool read_section(quint16 _index, section_t& _section);
    bool is_metadata_section(const section_t& _section, const section_t& _names);
    /// @p _size bytes from @p _offset; empty when the file does not hold all of them.
    QByteArray bytes(quint64 _offset, quint64 _size);
    /// An address-sized number of @p _block.
    quint64 number(const QByteArray& _block, qint64 _at) const;
    base::result_t refuse(refusal_reason_t _reason, const QString& _what);

    QFile file;
    refusal_t why;
    const layout_t* layout = nullptr;
    quint64 table_offset = 0;
    quint16 section_count = 0, names_index = 0;
};

}  // namespace loader

#include "loader/elf_note_reader_t.h"

#include <elf.h>

#include <QFileInfo>
#include <QtEndian>
#include <cstddef>
#include <cstring>

namespace loader {

namespace {

constexpr char section_name[] = ".note.qt.metadata";
constexpr char note_name[] = "qt-project!";
constexpr quint32 note_type = 0x74510001;
constexpr qint64 note_head_size = 12 + sizeof note_name;
/// More than any plugin's metadata; a larger section is not read into memory.
constexpr quint64 max_section_size = 1024 * 1024;

template <class Number>
Number value_at(const QByteArray& _block, qint64 _at) {
    return qFromUnaligned<Number>(_block.constData() + _at);
}

QByteArray descriptor_of(const QByteArray& _note) {
    if (_note.size() < note_head_size || value_at<quint32>(_note, 0) != sizeof note_name ||
        value_at<quint32>(_note, 8) != note_type ||
        std::memcmp(_note.constData() + 12, note_name, sizeof note_name) != 0) {
        return {};
    }
    const quint32 size = value_at<quint32>(_note, 4);
    return size <= _note.size() - note_head_size ? _note.mid(note_head_size, size) : QByteArray();
}

}  // namespace

elf_note_reader_t::elf_note_reader_t(const QString& _file) : file(_file) {}

base::result_of_t<QByteArray> elf_note_reader_t::read() {
    base::result_t result = open();
    if (result.is_ok()) {
        result = read_header();
    }
    if (!result.is_ok()) {
        return result;
    }
    return find_note();
}

base::result_t elf_note_reader_t::open() {
    // Opening a pipe would wait for its other end.
    if (!QFileInfo(file).isFile()) {
        return refuse(refusal_reason_t::unreadable, QStringLiteral("is no file"));
    }
    return file.open(QIODevice::ReadOnly)
               ? base::result_t()
               : refuse(refusal_reason_t::unreadable,
                        QStringLiteral("cannot be read: ") + file.errorString());
}

base::result_t elf_note_reader_t::read_header() {
    static constexpr layout_t narrow = {sizeof(Elf32_Ehdr),
                                        offsetof(Elf32_Ehdr, e_shoff),
                                        offsetof(Elf32_Ehdr, e_shentsize),
                                        sizeof(Elf32_Shdr),
                                        offsetof(Elf32_Shdr, sh_offset),
                                        offsetof(Elf32_Shdr, sh_size),
                                        false};
    static constexpr layout_t wide = {sizeof(Elf64_Ehdr),
                                      offsetof(Elf64_Ehdr, e_shoff),
                                      offsetof(Elf64_Ehdr, e_shentsize),
                                      sizeof(Elf64_Shdr),
                                      offsetof(Elf64_Shdr, sh_offset),
                                      offsetof(Elf64_Shdr, sh_size),
                                      true};
    constexpr char own_order = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? ELFDATA2LSB : ELFDATA2MSB;

    const QByteArray ident = bytes(0, EI_NIDENT);
    if (ident.isEmpty() || !ident.startsWith(ELFMAG) ||
        (ident[EI_CLASS] != ELFCLASS32 && ident[EI_CLASS] != ELFCLASS64)) {
        return refuse(refusal_reason_t::not_a_library, QStringLiteral("is not a shared library"));
    }
    if (ident[EI_DATA] != own_order) {
        return refuse(refusal_reason_t::other_platform,
                      QStringLiteral("was made for a processor of another byte order"));
    }
    layout = ident[EI_CLASS] == ELFCLASS64 ? &wide : &narrow;
    const QByteArray header = bytes(0, static_cast<quint64>(layout->header_size));
    if (header.isEmpty()) {
        return refuse(refusal_reason_t::damaged, QStringLiteral("ends inside its header"));
    }
    if (value_at<quint16>(header, EI_NIDENT) != ET_DYN) {
        return refuse(refusal_reason_t::not_a_library, QStringLiteral("is not a shared library"));
    }
    // The last three fields of both classes: size of an entry, number of entries, names' index.
    table_offset = number(header, layout->section_table);
    section_count = value_at<quint16>(header, layout->section_entry_size + 2);
    names_index = value_at<quint16>(header, layout->section_entry_size + 4);
    if (value_at<quint16>(header, layout->section_entry_size) != layout->section_size &&
        section_count > 0) {
        return refuse(refusal_reason_t::damaged, QStringLiteral("has odd section headers"));
    }
    return {};
}

base::result_of_t<QByteArray> elf_note_reader_t::find_note() {
    section_t names;
    if (section_count > 0 && !read_section(names_index, names)) {
        return refuse(refusal_reason_t::damaged, QStringLiteral("is cut off or damaged"));
    }
    for (quint16 index = 0; index < section_count; ++index) {
        section_t section;
        if (!read_section(index, section)) {
            return refuse(refusal_reason_t::damaged, QStringLiteral("is cut off or damaged"));
        }
        if (!is_metadata_section(section, names)) {
            continue;
        }
        const QByteArray descriptor = descriptor_of(bytes(section.offset, section.size));
        if (descriptor.isEmpty()) {
            return refuse(refusal_reason_t::malformed_metadata,
                          QStringLiteral("has a metadata note that cannot be understood"));
        }
        return descriptor;
    }
    return refuse(refusal_reason_t::no_metadata,
                  QStringLiteral("is a library without plugin metadata"));
}

bool elf_note_reader_t::read_section(quint16 _index, section_t& _section) {
    const auto size = static_cast<quint64>(layout->section_size);
    if (_index >= section_count || table_offset > static_cast<quint64>(file.size())) {
        return false;
    }
    const QByteArray header = bytes(table_offset + _index * size, size);
    if (header.isEmpty()) {
        return false;
    }
    _section = {value_at<quint32>(header, 0), number(header, layout->section_offset),
                number(header, layout->section_length)};
    return true;
}

bool elf_note_reader_t::is_metadata_section(const section_t& _section, const section_t& _names) {
    if (_section.name >= _names.size || _names.offset > static_cast<quint64>(file.size())) {
        return false;
    }
    const QByteArray name = bytes(_names.offset + _section.name, sizeof section_name);
    return name == QByteArray(section_name, sizeof section_name);
}

QByteArray elf_note_reader_t::bytes(quint64 _offset, quint64 _size) {
    const auto whole = static_cast<quint64>(file.size());
    if (_size > max_section_size || _offset > whole || _size > whole - _offset ||
        !file.seek(static_cast<qint64>(_offset))) {
        return {};
    }
    const QByteArray block = file.read(static_cast<qint64>(_size));
    return static_cast<quint64>(block.size()) == _size ? block : QByteArray();
}

quint64 elf_note_reader_t::number(const QByteArray& _block, qint64 _at) const {
    return layout->wide ? value_at<quint64>(_block, _at) : value_at<quint32>(_block, _at);
}

base::result_t elf_note_reader_t::refuse(refusal_reason_t _reason, const QString& _what) {
    why = {_reason, file.fileName() + QLatin1Char(' ') + _what + QLatin1Char('.')};
    return base::result_t::failed(why.text);
}

}  // namespace loader

#pragma once

#include <elf.h>

#include <QByteArray>
#include <QFile>
#include <cstring>

namespace support {

/// One section of an ELF file for 32-bit or 64-bit processors, little-endian as all of ours are.
struct elf_section_t {
    bool found = false;
    std::size_t pointer_size = 0;  ///< of the processor that the file is for
    std::size_t type = 0;
    std::size_t alignment = 0;
    std::size_t offset = 0;
    QByteArray bytes;

    static elf_section_t read(const QString& _path, const QByteArray& _name) {
        QFile file(_path);
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        const QByteArray content = file.readAll();
        if (!content.startsWith(ELFMAG) || content.size() < EI_NIDENT ||
            content.at(EI_DATA) != ELFDATA2LSB) {
            return {};
        }
        return content.at(EI_CLASS) == ELFCLASS64 ? find<Elf64_Ehdr, Elf64_Shdr>(content, _name, 8)
                                                  : find<Elf32_Ehdr, Elf32_Shdr>(content, _name, 4);
    }

    template <class Header, class Section>
    static elf_section_t find(const QByteArray& _content, const QByteArray& _name,
                              std::size_t _pointer_size) {
        const auto header = at<Header>(_content, 0);
        const auto section = [&](std::size_t index) {
            return at<Section>(_content, header.e_shoff + index * header.e_shentsize);
        };
        const auto names = section(header.e_shstrndx);
        for (std::size_t i = 0; i < header.e_shnum; ++i) {
            const auto one = section(i);
            const std::size_t name = names.sh_offset + one.sh_name;
            if (_content.mid(qsizetype(name), _name.size() + 1) == _name + '\0') {
                return {true,
                        _pointer_size,
                        std::size_t(one.sh_type),
                        std::size_t(one.sh_addralign),
                        std::size_t(one.sh_offset),
                        _content.mid(qsizetype(one.sh_offset), qsizetype(one.sh_size))};
            }
        }
        return {};
    }

    /// A plain struct that stands at @p _offset.
    template <class Struct>
    static Struct at(const QByteArray& _content, std::size_t _offset) {
        Struct value = {};
        if (_offset + sizeof value <= static_cast<std::size_t>(_content.size())) {
            std::memcpy(&value, _content.constData() + _offset, sizeof value);
        }
        return value;
    }
};

}  // namespace support

#pragma once

#include <elf.h>
#include <link.h>

#include <QByteArray>
#include <QFile>
#include <cstring>

namespace support {

/// One section of an ELF file of this machine's kind, read from the file.
struct elf_section_t {
    bool found = false;
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
        const auto header = at<ElfW(Ehdr)>(content, 0);
        const auto section = [&](std::size_t index) {
            return at<ElfW(Shdr)>(content, header.e_shoff + index * header.e_shentsize);
        };
        const auto names = section(header.e_shstrndx);
        for (std::size_t i = 0; i < header.e_shnum; ++i) {
            const auto one = section(i);
            const char* name = content.constData() + names.sh_offset + one.sh_name;
            if (_name == name) {
                return {true, one.sh_type, one.sh_addralign, one.sh_offset,
                        content.mid(static_cast<qsizetype>(one.sh_offset),
                                    static_cast<qsizetype>(one.sh_size))};
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

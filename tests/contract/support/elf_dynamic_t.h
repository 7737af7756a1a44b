#pragma once

#include <elf.h>
#include <link.h>

#include <QByteArrayList>

#include "contract/support/elf_section_t.h"

namespace support {

/// What a shared library asks of the loader and offers to others. For libraries of the processor
/// that this program runs on.
struct elf_dynamic_t {
    struct symbol_t {
        QByteArray name;  ///< as the compiler made it
        int binding;      ///< STB_GLOBAL, STB_WEAK, STB_GNU_UNIQUE, ...
        int type;         ///< STT_FUNC, STT_OBJECT, ...
        bool is_defined;
    };

    QByteArray soname;  ///< empty: it has none
    QByteArrayList needed;
    QList<symbol_t> symbols;

    /// Nothing but empty fields when there is no such library.
    static elf_dynamic_t read(const QString& _path) {
        const QByteArray entries = elf_section_t::read(_path, ".dynamic").bytes;
        const QByteArray symbols = elf_section_t::read(_path, ".dynsym").bytes;
        const QByteArray texts = elf_section_t::read(_path, ".dynstr").bytes;
        const auto text = [&texts](std::size_t place) {
            return qsizetype(place) < texts.size() ? QByteArray(texts.constData() + place)
                                                   : QByteArray();
        };
        elf_dynamic_t found;
        for (std::size_t at = 0; at < std::size_t(entries.size()); at += sizeof(ElfW(Dyn))) {
            const auto entry = elf_section_t::at<ElfW(Dyn)>(entries, at);
            if (entry.d_tag == DT_SONAME) {
                found.soname = text(entry.d_un.d_val);
            } else if (entry.d_tag == DT_NEEDED) {
                found.needed.append(text(entry.d_un.d_val));
            }
        }
        for (std::size_t at = 0; at < std::size_t(symbols.size()); at += sizeof(ElfW(Sym))) {
            const auto symbol = elf_section_t::at<ElfW(Sym)>(symbols, at);
            // The same in both sizes of file.
            found.symbols.append({text(symbol.st_name), ELF64_ST_BIND(symbol.st_info),
                                  ELF64_ST_TYPE(symbol.st_info), symbol.st_shndx != SHN_UNDEF});
        }
        return found;
    }
};

}  // namespace support

#include <elf.h>
#include <sys/stat.h>

#include <QTemporaryDir>
#include <QTest>

#include "loader/elf_note_reader_t.h"

using loader::elf_note_reader_t;
using loader::refusal_reason_t;

namespace {

template <class Struct>
QByteArray raw(const Struct& _struct) {
    return {reinterpret_cast<const char*>(&_struct), sizeof _struct};
}

QByteArray note(const QByteArray& _descriptor, const char* _name = "qt-project!",
                quint32 _type = 0x74510001) {
    return raw(quint32(12)) + raw(quint32(_descriptor.size())) + raw(_type) +
           QByteArray(_name, 12) + _descriptor;
}

// Smallest shared object that holds one note: header, names, note, three section headers.
template <class Header, class Section>
QByteArray library(const QByteArray& _note) {
    const QByteArray names("\0.note.qt.metadata\0", 20);
    Header header = {};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = sizeof(Header) == sizeof(Elf64_Ehdr) ? ELFCLASS64 : ELFCLASS32;
    header.e_ident[EI_DATA] = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? ELFDATA2LSB : ELFDATA2MSB;
    header.e_type = ET_DYN;
    header.e_shoff = decltype(header.e_shoff)(sizeof header + names.size() + _note.size());
    header.e_shentsize = sizeof(Section);
    header.e_shnum = 3;
    header.e_shstrndx = 1;
    Section strings = {};
    strings.sh_offset = sizeof header;
    strings.sh_size = decltype(strings.sh_size)(names.size());
    Section metadata = {};
    metadata.sh_name = 1;
    metadata.sh_offset = decltype(metadata.sh_offset)(sizeof header + names.size());
    metadata.sh_size = decltype(metadata.sh_size)(_note.size());
    return raw(header) + names + _note + raw(Section{}) + raw(strings) + raw(metadata);
}

QByteArray library_64(const QByteArray& _note) {
    return library<Elf64_Ehdr, Elf64_Shdr>(_note);
}

QByteArray library_32(const QByteArray& _note) {
    return library<Elf32_Ehdr, Elf32_Shdr>(_note);
}

QByteArray with_byte(QByteArray _file, qsizetype _at, int _byte) {
    _file[_at] = char(_byte);
    return _file;
}

}  // namespace

Q_DECLARE_METATYPE(refusal_reason_t)

class tst_elf_note_reader_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() { QVERIFY(folder.isValid()); }

    void the_descriptor_is_read_from_both_classes() {
        const QByteArray descriptor("descriptor");
        QCOMPARE(read(library_64(note(descriptor))).value, descriptor);
        QCOMPARE(read(library_32(note(descriptor))).value, descriptor);
    }

    void padding_behind_the_note_is_not_read() {
        const auto found = read(library_64(note("abc") + QByteArray(5, '\0')));
        QCOMPARE(found.value, QByteArray("abc"));
    }

    void what_is_no_plugin_is_refused_with_its_reason_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<refusal_reason_t>("reason");
        using r = refusal_reason_t;
        const QByteArray good = library_64(note("abc"));
        QTest::newRow("empty file") << QByteArray() << r::not_a_library;
        QTest::newRow("text") << QByteArray("this is a text and no library\n") << r::not_a_library;
        QTest::newRow("unknown class") << with_byte(good, EI_CLASS, 3) << r::not_a_library;
        QTest::newRow("program") << with_byte(good, 16, ET_EXEC) << r::not_a_library;
        QTest::newRow("other byte order")
            << with_byte(good, EI_DATA, 3 - good[EI_DATA]) << r::other_platform;
        QTest::newRow("ends in the header") << good.first(40) << r::damaged;
        QTest::newRow("ends in the sections") << good.chopped(1) << r::damaged;
        QTest::newRow("no section headers") << good.first(90) << r::damaged;
        QTest::newRow("odd section size") << with_byte(good, 58, 63) << r::damaged;
        QTest::newRow("names outside") << with_byte(good, 62, 9) << r::damaged;
        QTest::newRow("no sections") << with_byte(good, 60, 0) << r::no_metadata;
        QTest::newRow("other section name")
            << QByteArray(good).replace(".note.qt", ".note.qx") << r::no_metadata;
        QTest::newRow("other note name")
            << library_64(note("abc", "qt-project?")) << r::malformed_metadata;
        QTest::newRow("other note type")
            << library_64(note("abc", "qt-project!", 1)) << r::malformed_metadata;
        QTest::newRow("descriptor longer than the section")
            << library_64(note("abc").chopped(1)) << r::malformed_metadata;
        QTest::newRow("note too short") << library_64("abc") << r::malformed_metadata;
        QTest::newRow("empty descriptor") << library_64(note("")) << r::malformed_metadata;
    }
    void what_is_no_plugin_is_refused_with_its_reason() {
        QFETCH(QByteArray, file);
        QVERIFY(write(file));
        elf_note_reader_t reader(path());
        const auto found = reader.read();
        QTEST(reader.refusal().reason, "reason");
        QVERIFY(found.value.isEmpty());
        QVERIFY(found.error.contains(path()));
        QCOMPARE(reader.refusal().text, found.error);
    }

    void what_is_no_regular_file_is_unreadable() {
        const QString pipe = folder.filePath(QStringLiteral("pipe.so"));
        QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
        for (const QString& name : {pipe, folder.path(), folder.filePath(QStringLiteral("none"))}) {
            elf_note_reader_t reader(name);
            QVERIFY(!reader.read().is_ok());
            QCOMPARE(reader.refusal().reason, refusal_reason_t::unreadable);
        }
    }

    // Every byte of the headers in turn: right descriptor, or a reason; never anything else.
    void hostile_headers_are_survived() {
        for (const QByteArray& good : {library_64(note("abc")), library_32(note("abc"))}) {
            for (qsizetype at = 0; at < good.size(); ++at) {
                for (const int byte : {0x00, 0x7f, 0x80, 0xff}) {
                    const auto found = read(with_byte(good, at, byte));
                    QVERIFY(found.value.isEmpty() != found.is_ok());
                }
            }
        }
    }

    void every_truncation_is_survived() {
        const QByteArray good = library_64(note("abc"));
        for (qsizetype size = 0; size < good.size(); ++size) {
            QVERIFY(!read(good.first(size)).is_ok());
        }
    }

 private:
    QString path() const { return folder.filePath(QStringLiteral("file.so")); }

    bool write(const QByteArray& _content) const {
        QFile file(path());
        return file.open(QIODevice::WriteOnly) && file.write(_content) == _content.size();
    }
    base::result_of_t<QByteArray> read(const QByteArray& _content) const {
        if (!write(_content)) {
            return base::result_t::failed(QStringLiteral("The test's file cannot be written."));
        }
        return elf_note_reader_t(path()).read();
    }

    QTemporaryDir folder;
};

QTEST_GUILESS_MAIN(tst_elf_note_reader_t)
#include "tst_elf_note_reader_t.moc"

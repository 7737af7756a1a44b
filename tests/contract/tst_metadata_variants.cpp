// The metadata in the file must not depend on how the driver is built: hosts read it from there.
#include <QTest>

#include "contract/support/elf_section_t.h"
#include "contract/support/metadata_bytes.h"

namespace {

const QString folder = QStringLiteral(VARIANTS "/");
const QByteArray section_name = ".note.qt.metadata";

}  // namespace

class tst_metadata_variants : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void variants_data() {
        QTest::addColumn<bool>("has_symbols");
        QTest::newRow("debug") << true;
        QTest::newRow("release") << true;
        QTest::newRow("gc_sections") << true;
        QTest::newRow("stripped") << false;
        QTest::newRow("lto") << true;
        QTest::newRow("lto_gc_sections_stripped") << false;
    }
    void variants() {
        QFETCH(bool, has_symbols);
        const QString path =
            folder + QString::fromLatin1(QTest::currentDataTag()) + QStringLiteral(".so");
        if (QByteArray(QTest::currentDataTag()).startsWith("lto") && !HAS_LTO) {
            QSKIP("this compiler has no link-time optimisation");
        }
        const auto note = support::elf_section_t::read(path, section_name);
        QVERIFY2(note.found, qPrintable(path));
        const QByteArray expected = support::metadata_note();
        QCOMPARE(expected.size(), 24 + 92);
        QCOMPARE(note.bytes.left(expected.size()).toHex(), expected.toHex());
        QCOMPARE(note.type, std::size_t(SHT_NOTE));
        QCOMPARE(note.alignment, sizeof(void*));
        QCOMPARE(note.offset % sizeof(void*), std::size_t(0));
        QCOMPARE(note.bytes.size(), sizeof(void*) == 8 ? 0x78 : 0x74);
        // The variant is what it claims to be.
        QCOMPARE(support::elf_section_t::read(path, ".symtab").found, has_symbols);
    }

    void optimised_files_differ_from_plain_ones() {
        const auto code = [](const char* name) {
            return support::elf_section_t::read(folder + QString::fromLatin1(name), ".text").bytes;
        };
        QVERIFY(!code("debug.so").isEmpty());
        QVERIFY(code("debug.so") != code("release.so"));
    }
};

QTEST_GUILESS_MAIN(tst_metadata_variants)
#include "tst_metadata_variants.moc"

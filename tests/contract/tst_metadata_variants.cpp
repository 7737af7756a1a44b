// The metadata in the file must not depend on how the driver is built: hosts read it from there.
#include <QTest>

#include "contract/support/elf_section_t.h"
#include "contract/support/metadata_bytes.h"

using support::elf_section_t;

namespace {

const QString folder = QStringLiteral(VARIANTS "/");

}  // namespace

class tst_metadata_variants : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_note_is_the_same_data() {
        QTest::addColumn<QString>("variant");
        QTest::addColumn<bool>("is_stripped");
        const auto row = [](const char* variant, bool is_stripped) {
            QTest::newRow(variant) << QString::fromLatin1(variant) << is_stripped;
        };
        row("debug", false);
        row("release", false);
        row("hidden", false);
        row("gc_sections", false);
        row("stripped", true);
        row("lto", false);
        row("lto_gc_sections_stripped", true);
    }
    void the_note_is_the_same() {
        QFETCH(bool, is_stripped);
        QFETCH(QString, variant);
        if (variant.startsWith(QLatin1String("lto")) && !HAS_LTO) {
            QSKIP("this compiler has no link-time optimisation on this machine");
        }
        const QString path = folder + variant + QStringLiteral(".so");
        const auto note = elf_section_t::read(path, ".note.qt.metadata");
        QVERIFY2(note.found, qPrintable(path));
        const QByteArray expected = support::metadata_note();
        QCOMPARE(expected.size(), 24 + 92);
        QCOMPARE(note.bytes.left(expected.size()).toHex(), expected.toHex());
        QCOMPARE(note.type, std::size_t(SHT_NOTE));
        QCOMPARE(note.pointer_size, sizeof(void*));
        QCOMPARE(note.alignment, note.pointer_size);
        QCOMPARE(note.offset % note.pointer_size, std::size_t(0));
        QCOMPARE(note.bytes.size(), note.pointer_size == 8 ? 0x78 : 0x74);
        // The variant is what it claims to be, and still one that can be loaded.
        QCOMPARE(elf_section_t::read(path, ".symtab").found, !is_stripped);
        const QByteArray exported = elf_section_t::read(path, ".dynstr").bytes;
        QVERIFY(exported.contains(QByteArrayView("\0qt_plugin_instance\0", 20)));
        QVERIFY(exported.contains(QByteArrayView("\0qt_plugin_query_metadata_v2\0", 29)));
    }

    void optimised_files_differ_from_plain_ones() {
        const auto code = [](const char* name) {
            return elf_section_t::read(folder + QString::fromLatin1(name), ".text").bytes;
        };
        QVERIFY(!code("debug.so").isEmpty());
        QVERIFY(code("debug.so") != code("release.so"));
    }
};

QTEST_GUILESS_MAIN(tst_metadata_variants)
#include "tst_metadata_variants.moc"

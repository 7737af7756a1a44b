// The bytes by which hosts know the plugin before they run any of its code.
#include <QCborMap>
#include <QFileInfo>
#include <QTest>

#include "contract/support/elf_section_t.h"
#include "contract/support/loaded_plugin_t.h"
#include "contract/support/metadata_bytes.h"
#include "fakes/recording_logger_t.h"

namespace {

const QString path = QStringLiteral(PLUGIN_PATH);

}  // namespace

class tst_plugin_metadata : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_file_has_its_name() {
        QCOMPARE(QFileInfo(path).fileName(), QStringLiteral("libplugin_driver_api.so"));
    }

    void the_note_holds_the_92_bytes() {
        const auto note = support::elf_section_t::read(path, ".note.qt.metadata");
        QVERIFY(note.found);
        QCOMPARE(note.bytes.mid(0, 4), word(12));
        QCOMPARE(note.bytes.mid(4, 4), word(92));
        QCOMPARE(note.bytes.mid(8, 4), word(0x74510001));
        QCOMPARE(note.bytes.mid(12, 12), QByteArray("qt-project!\0", 12));
        QCOMPARE(support::metadata_bytes().size(), 92);
        QCOMPARE(note.bytes.mid(24, 92).toHex(), support::metadata_bytes().toHex());
    }

    void the_note_is_aligned_and_padded_to_the_pointer() {
        const auto note = support::elf_section_t::read(path, ".note.qt.metadata");
        const std::size_t pointer = sizeof(void*);
        QCOMPARE(note.type, std::size_t(SHT_NOTE));
        QCOMPARE(note.alignment, pointer);
        QCOMPARE(note.offset % pointer, std::size_t(0));
        QCOMPARE(std::size_t(note.bytes.size()), (24 + 92 + pointer - 1) / pointer * pointer);
        QVERIFY(note.bytes.mid(24 + 92).count('\0') == note.bytes.size() - 24 - 92);
    }

    void querying_gives_the_same_bytes_and_writes_no_line() {
        fakes::recording_logger_t logger;
        support::loaded_plugin_t plugin;
        QVERIFY2(plugin.is_loaded(), qPrintable(plugin.error()));
        const auto query = plugin.query();
        QVERIFY(query != nullptr);
        const auto first = query();
        QCOMPARE(first.size, std::size_t(92));
        QCOMPARE(QByteArray(static_cast<const char*>(first.data), 92).toHex(),
                 support::metadata_bytes().toHex());
        QCOMPARE(query().data, first.data);
        QVERIFY(logger.lines().isEmpty());
    }

    void the_map_reads_as_qt_writes_it() {
        QCborParserError error;
        const QCborValue value = QCborValue::fromCbor(support::metadata_bytes().mid(4), &error);
        QCOMPARE(error.error, QCborError::NoError);
        const QCborMap map = value.toMap();
        QCOMPARE(map.size(), 3);
        QCOMPARE(map.value(2).toString(), QStringLiteral("org.kelma.torlan.interfaces"));
        QCOMPARE(map.value(3).toString(), QStringLiteral("plugin_driver_api_t"));
        const QCborMap interface = map.value(4).toMap().value(QStringLiteral("interface")).toMap();
        QCOMPARE(interface.value(QStringLiteral("port")).toString(), QStringLiteral("dev/xxxx"));
        QCOMPARE(interface.value(QStringLiteral("type")).toString(), QStringLiteral("TP"));
    }

 private:
    static QByteArray word(quint32 _value) {
        return QByteArray(reinterpret_cast<const char*>(&_value), sizeof _value);
    }
};

QTEST_GUILESS_MAIN(tst_plugin_metadata)
#include "tst_plugin_metadata.moc"

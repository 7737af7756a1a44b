#include "ets/text_encoding.h"

#include <QTest>

class tst_text_encoding : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void is_found_out_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* _title, const QByteArray& _bytes, const QString& _text) {
            QTest::newRow(_title) << _bytes << _text;
        };
        row("plain", "Lamp", "Lamp");
        row("UTF-8",
            "K\xc3\xbc"
            "che",
            "Küche");
        row("UTF-8 with its mark",
            "\xef\xbb\xbfK\xc3\xbc"
            "che",
            "Küche");
        row("UTF-16 with its mark", QByteArray("\xff\xfeK\0\xfc\0", 6), "Kü");
        row("the other UTF-16 with its mark", QByteArray("\xfe\xff\0K\0\xfc", 6), "Kü");
        row("UTF-16 without", QByteArray("\"\0K\0\xfc\0\"\0", 8), "\"Kü\"");
        row("the other UTF-16 without", QByteArray("\0\"\0K\0\xfc\0\"", 8), "\"Kü\"");
        row("Windows-1252",
            "K\xfc"
            "che",
            "Küche");
        row("Windows-1252 above Latin-1", "5 \x80 \x96 \x9f", "5 € – Ÿ");
        row("nothing", "", "");
    }
    void is_found_out() {
        QFETCH(QByteArray, bytes);
        QTEST(ets::decoded_text(bytes), "text");
    }

    void windows_1252_has_every_byte_and_nothing_else() {
        QByteArray all("\xff");
        for (int byte = 1; byte < 256; ++byte) {
            all.append(char(byte));
        }
        QCOMPARE(ets::to_windows_1252(ets::decoded_text(all)), all);
        QCOMPARE(ets::to_windows_1252(QStringLiteral("Ж")), QByteArray());
    }
};

QTEST_GUILESS_MAIN(tst_text_encoding)
#include "tst_text_encoding.moc"

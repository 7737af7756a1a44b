#include "program/say.h"

#include <QCoreApplication>
#include <QTest>
#include <memory>

/// A stream that a test reads again.
class stream_t {
 public:
    std::FILE* get() const { return file.get(); }
    QByteArray text() const {
        std::rewind(file.get());
        QByteArray bytes(1024, '\0');
        bytes.resize(qsizetype(std::fread(bytes.data(), 1, size_t(bytes.size()), file.get())));
        return bytes;
    }

 private:
    struct close_t {
        void operator()(std::FILE* _file) const { std::fclose(_file); }
    };
    const std::unique_ptr<std::FILE, close_t> file{std::tmpfile()};
};

class tst_say : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void cleanup() { torlan::speak_as({}); }

    void the_application_speaks_unless_told_otherwise() {
        const stream_t stream;
        torlan::say(stream.get(), QStringLiteral("It is ready."));
        torlan::speak_as(QStringLiteral("torlan"));
        torlan::say(stream.get(), QStringLiteral("It is ready."));
        QCOMPARE(stream.text(), QByteArray("somebody: It is ready.\ntorlan: It is ready.\n"));
    }

    void a_sentence_is_one_line_of_utf8_data() {
        QTest::addColumn<QString>("sentence");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("letters") << QStringLiteral("K\u00fcche")
                                 << QByteArray(
                                        "K\xc3\xbc"
                                        "che");
        QTest::newRow("line end") << QStringLiteral("a\nb") << QByteArray("a b");
        QTest::newRow("terminal's control") << QStringLiteral("a\x1b[2Jb") << QByteArray("a [2Jb");
        QTest::newRow("one above ASCII") << QStringLiteral("a\u009bb") << QByteArray("a b");
        QTest::newRow("format") << QStringLiteral("%s %1 %n") << QByteArray("%s %1 %n");
    }
    void a_sentence_is_one_line_of_utf8() {
        QFETCH(QString, sentence);
        QFETCH(QByteArray, line);
        const stream_t stream;
        torlan::say(stream.get(), sentence);
        QCOMPARE(stream.text(), "somebody: " + line + "\n");
    }
};

int main(int _argc, char* _argv[]) {
    const QCoreApplication application(_argc, _argv);
    QCoreApplication::setApplicationName(QStringLiteral("somebody"));
    tst_say test;
    return QTest::qExec(&test, _argc, _argv);
}
#include "tst_say.moc"

#include "ets/xml_walk_t.h"

#include <QBuffer>
#include <QTest>

#include "ets/limits_t.h"

using ets::xml_walk_t;

namespace {

/// Walks to the end; the elements that begin, with how deep they are.
QStringList walked(const QByteArray& _text, QString* _error) {
    QBuffer buffer;
    buffer.setData(_text);
    buffer.open(QIODevice::ReadOnly);
    xml_walk_t walk(&buffer, QStringLiteral("x.xml"));
    QStringList begun;
    while (walk.next()) {
        if (walk.is_start()) {
            begun.append(walk.element().toString() + QString::number(walk.depth()));
        }
    }
    *_error = walk.result().error;
    return begun;
}

}  // namespace

class tst_xml_walk_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void goes_over_the_elements() {
        QString error;
        QCOMPARE(walked("<a><b><c/></b>text<b/></a>", &error),
                 (QStringList{"a1", "b2", "c3", "b2"}));
        QCOMPARE(error, QString());
    }

    void refused_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("nothing") << QByteArray() << "x.xml: line 1: Premature end of document.";
        QTest::newRow("no XML") << QByteArray("hello") << "x.xml: line 1: Start tag expected.";
        QTest::newRow("document type")
            << QByteArray("<!DOCTYPE a SYSTEM 'file:///etc/passwd'><a/>")
            << "x.xml: line 1: it has a document type, and with that may have entities.";
        QTest::newRow("too deep") << QByteArray("<a>").repeated(ets::max_depth + 1)
                                  << "x.xml: line 1: elements are too deep inside each other.";
        QTest::newRow("a text without an end")
            << "<a b='" + QByteArray(ets::max_token_bytes + (1 << 20), 'x')
            << "x.xml: line 1: a text is longer than 4 MiB.";
    }
    void refused() {
        QFETCH(QByteArray, text);
        QString error;
        walked(text, &error);
        QTEST(error, "error");
    }

    void long_files_of_short_texts_are_read() {
        QString error;
        const QByteArray text = "<a>" + QByteArray("<b c='d'/>").repeated(1'000'000) + "</a>";
        QVERIFY(text.size() > 2 * ets::max_token_bytes);
        QCOMPARE(walked(text, &error).size(), 1'000'001);
        QCOMPARE(error, QString());
    }
};

QTEST_GUILESS_MAIN(tst_xml_walk_t)
#include "tst_xml_walk_t.moc"

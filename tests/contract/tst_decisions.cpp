// The list of decisions and the folder say the same: no gap in the numbers is left unexplained.
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace {

const QDir folder(QStringLiteral(SOURCE_ROOT "/docs/decisions"));

QString text_of(const QString& _file) {
    QFile file(folder.filePath(_file));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList pages() {
    QStringList files = folder.entryList({QStringLiteral("*.md")}, QDir::Files, QDir::Name);
    files.removeOne(QStringLiteral("README.md"));
    return files;
}

}  // namespace

class tst_decisions : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_list_names_every_page_in_order() {
        static const QRegularExpression line(
            QStringLiteral(R"(^- \[(\d{3})\]\(((\d{3})-[^)]*\.md)\) \S)"),
            QRegularExpression::MultilineOption);
        QStringList listed;
        const QString list = text_of(QStringLiteral("README.md"));
        for (const QRegularExpressionMatch& match : line.globalMatch(list)) {
            QCOMPARE(match.captured(1), match.captured(3));
            listed.append(match.captured(2));
        }
        QVERIFY(listed.size() > 40);
        QCOMPARE(listed, pages());
    }

    void a_number_is_given_once() {
        QStringList numbers;
        for (const QString& page : pages()) {
            numbers.append(page.left(3));
        }
        QCOMPARE(numbers.removeDuplicates(), 0);
    }

    void a_page_is_short() {
        for (const QString& page : pages()) {
            const QString text = text_of(page);
            QVERIFY2(text.startsWith(QStringLiteral("# ")), qPrintable(page));
            QVERIFY2(text.count(QLatin1Char('\n')) <= 20, qPrintable(page));
        }
    }
};

QTEST_GUILESS_MAIN(tst_decisions)
#include "tst_decisions.moc"

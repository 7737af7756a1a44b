// Each header can be included first and alone: the build compiles them so, see
// torlan_verify_headers.
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSet>
#include <QTest>

class tst_headers : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void every_header_of_the_product_is_compiled_alone() {
        QFile file(QStringLiteral(VERIFIED));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        const QSet<QString> verified(lines.cbegin(), lines.cend());
        QStringList missing;
        int seen = 0;
        for (const char* tree : {"base", "contract", "http", "server", "host", "apps"}) {
            QDirIterator each(QStringLiteral(SOURCE_ROOT "/") + QLatin1String(tree),
                              {QStringLiteral("*.h")}, QDir::Files, QDirIterator::Subdirectories);
            for (; each.hasNext(); ++seen) {
                const QString header = each.next();
                missing += verified.contains(header) ? QStringList() : QStringList(header);
            }
        }
        QVERIFY(seen > 100);
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QLatin1Char('\n'))));
    }
};

QTEST_GUILESS_MAIN(tst_headers)
#include "tst_headers.moc"

#include <QTest>
class tst_includes : public QObject {
    Q_OBJECT
};
QTEST_GUILESS_MAIN(tst_includes)
#include "tst_includes.moc"

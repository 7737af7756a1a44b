#include <QTest>
class tst_log_lines : public QObject {
    Q_OBJECT
};
QTEST_GUILESS_MAIN(tst_log_lines)
#include "tst_log_lines.moc"

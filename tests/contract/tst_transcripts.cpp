#include <QTest>
class tst_transcripts : public QObject {
    Q_OBJECT
};
QTEST_GUILESS_MAIN(tst_transcripts)
#include "tst_transcripts.moc"

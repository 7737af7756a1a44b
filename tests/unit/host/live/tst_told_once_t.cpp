#include "live/told_once_t.h"

#include <QTest>

using database::live::told_once_t;

class tst_told_once_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_sentence_is_told_once() {
        told_once_t told;
        QCOMPARE(told.fresh({"a", "b", "a"}), QStringList({"a", "b"}));
        QCOMPARE(told.fresh({"b", "c"}), QStringList("c"));
        QCOMPARE(told.fresh({"a", "b", "c"}), QStringList());
    }

    void it_says_when_it_tells_no_more() {
        told_once_t told;
        QStringList many;
        for (int i = 0; i < 5000; ++i) {
            many.append(QString::number(i));
        }
        const QStringList first = told.fresh(many);
        QCOMPARE(first.size(), told_once_t::limit);
        QCOMPARE(first.at(998), "998");
        QCOMPARE(first.last(),
                 "More rows than 999 are left out or cleaned; the others are not told.");
        QCOMPARE(told.fresh({"another"}), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_told_once_t)
#include "tst_told_once_t.moc"

#include "base/result_t.h"

#include <QTest>

using base::result_of_t;
using base::result_t;

namespace {

template <class one_t, class other_t>
constexpr bool are_one_expression = requires(bool _choice, one_t _one, other_t _other) {
    _choice ? _one : _other;
};
static_assert(!are_one_expression<result_of_t<int>, result_t>,
              "the expression would be a result_t, without the value");

}  // namespace

class tst_result_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void nothing_said_is_ok() { QVERIFY(result_t().is_ok()); }

    void a_sentence_is_a_failure() {
        const result_t result = result_t::failed(QStringLiteral("It broke."));
        QVERIFY(!result.is_ok());
        QCOMPARE(result.error, QStringLiteral("It broke."));
    }

    void a_value_is_ok() {
        const result_of_t<int> result = 7;
        QVERIFY(result.is_ok());
        QCOMPARE(result.value, 7);
        QVERIFY(result_t(result).is_ok());
    }

    void a_failure_is_handed_on_with_its_sentence() {
        const result_of_t<int> number = result_t::failed(QStringLiteral("It broke."));
        const result_of_t<QString> text = number;
        const result_t without_value = number;
        QVERIFY(!number.is_ok() && !text.is_ok());
        QCOMPARE(text.error, QStringLiteral("It broke."));
        QCOMPARE(without_value.error, QStringLiteral("It broke."));
        QCOMPARE(number.value, 0);
    }
};

QTEST_GUILESS_MAIN(tst_result_t)
#include "tst_result_t.moc"

#include <QTest>

#include "utility/identifier_text.h"

namespace {

const QString uuid = QStringLiteral("{abcdef01-2345-6789-fedc-ba9876543210}");

}  // namespace

class tst_identifier_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_plain_form_drops_braces_and_hyphens() {
        QCOMPARE(utility::plain_uuid(uuid), QStringLiteral("abcdef0123456789fedcba9876543210"));
    }

    void the_number_form_writes_each_letter_as_its_value() {
        QCOMPARE(utility::number_uuid(uuid), QStringLiteral("101112131415012345678915141312111098"
                                                            "76543210"));
    }

    void the_number_form_leaves_upper_case_letters() {
        QCOMPARE(utility::number_uuid(QStringLiteral("{aAfF-fg}")), QStringLiteral("10A15F15g"));
    }

    void the_installation_form_keeps_letters_digits_and_white_space() {
        QCOMPARE(utility::installation_uuid(QStringLiteral("{aZ 09-_.\t:}")),
                 QStringLiteral("aZ 09\t"));
        QCOMPARE(utility::installation_uuid(uuid), utility::plain_uuid(uuid));
    }
};

QTEST_GUILESS_MAIN(tst_identifier_text)
#include "tst_identifier_text.moc"

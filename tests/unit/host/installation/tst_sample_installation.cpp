#include <QFile>
#include <QSet>
#include <QTest>

#include "accounts/broker_hash.h"
#include "installation/document_reader.h"
#include "installation/document_writer.h"

using namespace database::installation;

/// examples/home.json: what people see first, so it must hold one of every kind.
class tst_sample_installation : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void export_of_it_is_stable();
    void every_kind_of_element_is_there();
    void users_have_each_of_the_four_rights();
    void alice_signs_in_with_the_password_that_is_told();

 private:
    QSet<int> types() const;
    /// The different permission bits that a user has.
    QSet<int> rights(const QString& _user) const;

    installation_t home;
};

void tst_sample_installation::initTestCase() {
    QFile file(SAMPLE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const auto result = read_document(file.readAll(), SAMPLE);
    QCOMPARE(result.error, QString());
    home = result.value;
}

QSet<int> tst_sample_installation::types() const {
    QSet<int> found;
    for (const element_t& element : home.elements) {
        found.insert(element.type);
    }
    return found;
}

QSet<int> tst_sample_installation::rights(const QString& _user) const {
    const QList<int> bits = home.permissions.value(_user).values();
    return QSet<int>(bits.begin(), bits.end());
}

void tst_sample_installation::export_of_it_is_stable() {
    const QByteArray bytes = write_document(home, passwords_t::hashed);
    QCOMPARE(write_document(read_document(bytes, "export").value, passwords_t::hashed), bytes);
}

void tst_sample_installation::every_kind_of_element_is_there() {
    QCOMPARE(home.elements.size(), 44);
    QVERIFY(types().contains({1, 2, 3, 4, 5, 6, 7, 8, 11, 14, 17}));
    QCOMPARE(home.thermostats.size(), 2);
    const auto count = [this](auto _test) {
        return std::count_if(home.elements.begin(), home.elements.end(), _test);
    };
    QCOMPARE(count([](const element_t& _e) { return _e.type == 8 && _e.flags >= 0; }), 4);
    QCOMPARE(count([](const element_t& _e) {
                 return _e.type == 8 && _e.flags < 0 && !_e.functions.isEmpty();
             }),
             1);
    QCOMPARE(count([](const element_t& _e) { return _e.functions.values().contains(QString()); }),
             1);
}

void tst_sample_installation::users_have_each_of_the_four_rights() {
    QCOMPARE(home.users.size(), 4);
    QCOMPARE(home.permissions["u-alice"].size(), home.elements.size());
    QCOMPARE(rights("u-alice"), QSet<int>{3});
    QCOMPARE(rights("u-bob"), QSet<int>{1});
    QCOMPARE(rights("u-carol"), QSet<int>{2});
    QCOMPARE(rights("u-dave"), QSet<int>{});
}

void tst_sample_installation::alice_signs_in_with_the_password_that_is_told() {
    QVERIFY(accounts::verify_password("sample-alice", home.users["u-alice"].password_hash));
}

QTEST_GUILESS_MAIN(tst_sample_installation)
#include "tst_sample_installation.moc"

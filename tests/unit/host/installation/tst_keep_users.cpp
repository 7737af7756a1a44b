#include "installation/keep_users.h"

#include <QTest>

using namespace database::installation;

namespace {

using grants_t = QMap<QString, int>;

/// An installation with these elements and one user.
installation_t home(const QStringList& _elements, const QString& _id, const QString& _name,
                    const QString& _hash, const grants_t& _grants) {
    installation_t made;
    for (const QString& element : _elements) {
        element_t& entry = made.elements[element];
        entry.name = element;
        entry.type = 1;
    }
    made.users.insert(_id, {_name, _hash});
    made.permissions.insert(_id, _grants);
    return made;
}

const installation_t former =
    home({"e-old", "e-both"}, "u-1", "alice", "former hash", {{"e-old", 3}, {"e-both", 1}});

}  // namespace

class tst_keep_users : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void users_stay_with_passwords_and_grants() {
        installation_t next = home({"e-both"}, "u-x", "bob", "bob's hash", {{"e-both", 3}});
        QCOMPARE(keep_users(former, &next),
                 QStringList("Grants for elements that are gone are left out: 1."));
        QCOMPARE(next.users.keys(), (QStringList{"u-1", "u-x"}));
        QCOMPARE(next.users["u-1"].password_hash, "former hash");
        QCOMPARE(next.permissions["u-1"], (grants_t{{"e-both", 1}}));
        QCOMPARE(next.permissions["u-x"], (grants_t{{"e-both", 3}}));
    }

    void the_same_user_gets_what_is_new_and_nothing_back() {
        installation_t next = home({"e-old", "e-both", "e-new"}, "u-alice", "alice", "other hash",
                                   {{"e-old", 3}, {"e-both", 3}, {"e-new", 3}});
        installation_t withdrawn = former;
        withdrawn.permissions["u-1"].remove("e-old");
        QCOMPARE(keep_users(withdrawn, &next), QStringList());
        QCOMPARE(next.users.keys(), QStringList("u-1"));
        QCOMPARE(next.users["u-1"].password_hash, "former hash");
        QCOMPARE(next.permissions,
                 (QMap<QString, grants_t>{{"u-1", {{"e-both", 1}, {"e-new", 3}}}}));
    }

    void another_user_with_the_identifier_gets_another_one() {
        installation_t next = home({"e-both"}, "u-1", "bob", "bob's hash", {{"e-both", 2}});
        keep_users(former, &next);
        QCOMPARE(next.users["u-1"].username, "alice");
        QCOMPARE(next.users["u-1-2"].username, "bob");
        QCOMPARE(next.permissions["u-1-2"], (grants_t{{"e-both", 2}}));
    }

    void identifier_of_another_former_user_is_not_given_either() {
        installation_t two = former;
        two.users.insert("u-1-2", {"carol", "carol's hash"});
        installation_t next = home({"e-both"}, "u-1", "bob", "bob's hash", {{"e-both", 2}});
        keep_users(two, &next);
        QCOMPARE(next.users["u-1"].username, "alice");
        QCOMPARE(next.users["u-1-2"].username, "carol");
        QCOMPARE(next.users["u-1-3"].username, "bob");
        QCOMPARE(next.permissions["u-1-3"], (grants_t{{"e-both", 2}}));
    }

    // Who had to make room is still known by the name.
    void former_user_who_has_the_identifier_of_another_stays_one() {
        installation_t two = former;
        two.users.insert("u-2", {"bob", "former hash of bob"});
        installation_t next =
            home({"e-both", "e-new"}, "u-1", "bob", "bob's hash", {{"e-both", 2}, {"e-new", 2}});
        keep_users(two, &next);
        QCOMPARE(next.users.keys(), (QStringList{"u-1", "u-2"}));
        QCOMPARE(next.users["u-2"].password_hash, "former hash of bob");
        QCOMPARE(next.permissions["u-2"], (grants_t{{"e-new", 2}}));
    }

    void who_has_no_grant_has_no_list_of_them() {
        installation_t next = home({"e-new"}, "u-x", "bob", "bob's hash", {});
        keep_users(former, &next);
        QCOMPARE(next.users.keys(), (QStringList{"u-1", "u-x"}));
        QCOMPARE(next.permissions.keys(), QStringList());
    }

    void without_former_users_the_next_one_stays_as_it_is() {
        installation_t next = former;
        QCOMPARE(keep_users({}, &next), QStringList());
        QVERIFY(next == former);
    }
};

QTEST_GUILESS_MAIN(tst_keep_users)
#include "tst_keep_users.moc"

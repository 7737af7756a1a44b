#include <signal.h>

#include <QtTest>

#include "system/support/console_home_t.h"

using namespace support;

/// What happens to somebody who watches: the console while connections, rights and users go.
class tst_console_changes : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() { QVERIFY2(home.start(), qPrintable(home.error())); }

    void revoked_element_goes_at_once_and_comes_back() {
        const auto page = home.page_of("bob");
        QVERIFY(page && page->shows(card("e-hall-door")));
        QCOMPARE(home.run().control({"grant", "bob", "e-hall-door", "deny"}), 0);
        QVERIFY(page->becomes(count_is(card("e-hall-door"), 0)));
        QVERIFY(page->shows(card("e-hall-ceiling")));
        QCOMPARE(home.run().control({"grant", "bob", "e-hall-door", "read"}), 0);
        QVERIFY(page->shows(card("e-hall-door"), 30'000));
        QVERIFY(page->becomes("document.querySelector(" + quoted(card("e-hall-door")) +
                              ").textContent.includes('read only')"));
        QCOMPARE(page->troubles(), QStringList());
    }

    void write_that_was_revoked_is_refused_in_plain_words() {
        const auto page = home.page_of("alice");
        const QString lamp = card("e-kitchen-worktop");
        QVERIFY(page && page->shows(lamp + " [role=switch]:not([disabled])"));
        QCOMPARE(home.run().control({"grant", "alice", "e-kitchen-worktop", "read"}), 0);
        QVERIFY(page->click(lamp + " [role=switch]"));
        QVERIFY(page->becomes("document.querySelector(" + quoted(lamp) +
                              ").textContent.includes('read only')"));
        QVERIFY(page->becomes(count_is(lamp + " [role=switch]", 0)));
        QCOMPARE(home.run().control({"grant", "alice", "e-kitchen-worktop", "readwrite"}), 0);
    }

    void broker_that_is_started_again_is_survived() {
        const auto page = home.page_of("alice");
        QVERIFY(page && page->shows(card("e-kitchen-window")));
        QVERIFY(page->becomes("document.querySelector('#connection').dataset.state === 'good'"));
        const qint64 broker = home.run().descendant("mosquitto");
        QVERIFY(broker > 1);
        QCOMPARE(::kill(pid_t(broker), SIGKILL), 0);
        QVERIFY(page->becomes("document.querySelector('#connection').dataset.state === 'bad'"));
        QVERIFY(page->shows(card("e-kitchen-window")));
        QVERIFY(page->becomes("document.querySelector('#connection').dataset.state === 'good'",
                              40'000));
        // What changed meanwhile, and what changes now.
        QCOMPARE(home.run().control({"set", "i-kitchen-window", "1"}), 0);
        QVERIFY(page->becomes("document.querySelector(" + quoted(row("e-kitchen-window", "open")) +
                              ").dataset.value === '1'"));
    }

    void page_s_server_that_dies_is_started_again() {
        const qint64 server = home.run().descendant("torlan-web");
        QVERIFY(server > 1);
        QCOMPARE(::kill(pid_t(server), SIGKILL), 0);
        QTRY_VERIFY(home.run().descendant("torlan-web") > 1 &&
                    home.run().descendant("torlan-web") != server);
        QVERIFY(home.page_of("bob"));
    }

    void removed_user_is_signed_out() {
        QCOMPARE(home.run().control({"user", "add", "erin"}, "sample-erin\n"), 0);
        QCOMPARE(home.run().control({"grant", "erin", "e-hall-door", "read"}), 0);
        const auto page = home.page_of("erin");
        QVERIFY(page && page->shows(card("e-hall-door")));
        QCOMPARE(home.run().control({"user", "remove", "erin"}), 0);
        QVERIFY(page->shows("#sign-in", 40'000));
        QVERIFY(page->text("#sign-in .note").contains("may no longer sign in"));
    }

    void signing_out_leaves_nothing_on_the_page() {
        const auto page = home.page_of("alice");
        QVERIFY(page && page->shows(card("e-hall-ceiling")));
        QVERIFY(page->click("#sign-out") && page->shows("#sign-in"));
        QVERIFY(page->value(count_is(".card", 0)).toBool());
        QVERIFY(page->value("localStorage.length === 0 && sessionStorage.length === 0").toBool());
        QCOMPARE(page->troubles(), QStringList());
    }

    // Last: nothing is there any more.
    void server_that_has_ended_is_told() {
        const auto page = home.page_of("alice");
        QVERIFY(page && page->shows(card("e-hall-ceiling")));
        QCOMPARE(home.run().stop(), 0);
        // Between two tries; "connecting" comes in turn with it.
        QVERIFY(page->becomes(
            "((link) => link.dataset.state === 'bad' && link.textContent.includes('interrupted'))("
            "document.querySelector('#connection'))"));
    }

 private:
    console_home_t home;
};

QTEST_GUILESS_MAIN(tst_console_changes)
#include "tst_console_changes.moc"

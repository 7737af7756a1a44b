#include <QtTest>

#include "system/support/console_home_t.h"
#include "system/support/faint_texts.h"

using namespace support;

/// The console as people use it: Debian's Chromium, the page, and everything behind ./run.
class tst_console : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() { QVERIFY2(home.start(), qPrintable(home.error())); }

    void wrong_password_is_told() {
        const auto page = home.page();
        QVERIFY(page && home.sign_in(page.get(), "alice", "wrong"));
        QVERIFY(
            page->becomes("document.querySelector('#sign-in .note').textContent.includes("
                          "'password is wrong')"));
        // And the next try may be right.
        QVERIFY(home.sign_in(page.get(), "alice") && page->shows("#home"));
        QCOMPARE(page->troubles(), QStringList());
    }

    void elements_are_there_by_kind_and_room_and_can_be_searched() {
        const auto page = home.page_of("alice");
        QVERIFY(page);
        QVERIFY(page->becomes(count_is(".card", 44)));  // 46, and two for service
        QCOMPARE(page->text("section[aria-label='Dimmers'] .count"), QString("4"));
        QCOMPARE(page->text(card("e-kitchen-blind") + " h3"), QString("Blind, Kitchen"));
        QVERIFY(page->type("input[type=search]", "kitch lamp"));
        QVERIFY(page->becomes(count_is("#home .card", 2)));
        QVERIFY(page->type("input[type=search]", "no such thing"));
        QVERIFY(page->becomes(count_is("#home .card", 0)));
        QVERIFY(page->text(".empty").contains("no such thing"));
        QCOMPARE(page->troubles(), QStringList());
    }

    void lamp_is_switched_and_says_what_came_back() {
        const auto page = home.page_of("alice");
        QVERIFY(page);
        const QString lamp = row("e-hall-ceiling", "execute");
        const QString knob = card("e-hall-ceiling") + " [role=switch]";
        QVERIFY(page->shows(knob));
        QVERIFY(page->becomes(is_checked(knob, false)));
        QVERIFY(page->click(knob));
        QVERIFY(page->becomes(phase_is(lamp, "done")));
        QVERIFY(page->becomes(is_checked(knob, true)));
        QVERIFY2(page->text(lamp + " .note").contains("is On now"),
                 qPrintable(page->text(lamp + " .note")));
        QCOMPARE(page->troubles(), QStringList());
    }

    void slider_asks_when_it_is_let_go() {
        const auto page = home.page_of("alice");
        QVERIFY(page);
        const QString level = row("e-kitchen-table", "level");
        QVERIFY(page->becomes(has_value(level, "65")));
        QVERIFY(page->shows(level + " input:not([disabled])"));
        page->value("document.querySelector(" + quoted(level + " input") + ").focus()");
        page->press("End");
        QVERIFY(page->becomes(has_value(level, "100")));
        QVERIFY(page->becomes(phase_is(level, "done")));
        QCOMPARE(page->text(level + " .value"), QString("100 %"));
        QCOMPARE(page->troubles(), QStringList());
    }

    void thermostat_is_set_and_scenario_starts() {
        const auto page = home.page_of("alice");
        QVERIFY(page);
        const QString point = row("e-living-thermostat", "thermo/setpoint");
        QVERIFY(page->shows(point + " input:not([disabled])"));
        page->value("document.querySelector(" + quoted(point + " input") + ").focus()");
        page->press("ArrowRight");
        QVERIFY(page->becomes(has_value(point, "21.5")));
        QCOMPARE(page->text(point + " .value"), QString("21.5 °C"));
        QVERIFY(page->click(card("e-scene-movie") + " button.primary"));
        QVERIFY(page->becomes(phase_is(row("e-scene-movie", "execute"), "done")));
        QCOMPARE(page->troubles(), QStringList());
    }

    void what_the_thing_does_not_take_is_said_in_plain_words() {
        const auto page = home.page_of("alice");
        QVERIFY(page && page->shows(card("e-stuck") + " [role=switch]:not([disabled])"));
        QVERIFY(page->click(card("e-stuck") + " [role=switch]"));
        QVERIFY(page->becomes(phase_is(row("e-stuck", "execute"), "accepted")));
        QVERIFY(page->becomes(phase_is(row("e-stuck", "execute"), "silent")));
        QVERIFY(page->text(row("e-stuck", "execute") + " .note").contains("nothing has changed"));
        QVERIFY(page->becomes(is_checked(card("e-stuck") + " [role=switch]", false)));
    }

    void who_may_only_read_is_shown_so() {
        const auto page = home.page_of("bob");
        QVERIFY(page);
        QVERIFY(
            page->becomes("document.querySelectorAll('.card').length > 20 && "
                          "[...document.querySelectorAll('.card')].every("
                          "(each) => each.textContent.includes('read only'))"));
        QVERIFY(page->value(count_is(".card button, .card input, .card select", 0)).toBool());
        QCOMPARE(page->text(card("e-kitchen-window") + " .value"), QString("Closed"));
        QCOMPARE(page->troubles(), QStringList());
    }

    void who_may_only_write_adds_it_and_it_is_kept() {
        const auto page = home.page_of("carol");
        QVERIFY(page && page->shows(".write-only summary"));
        QVERIFY(page->becomes(count_is(".card", 0)));
        QVERIFY(page->click(".write-only summary"));
        QVERIFY(add(page.get(), "e-kitchn-blind", "position", "There is no element"));
        QVERIFY(add(page.get(), "e-hall-door", "open", "You may not write"));
        QVERIFY(add(page.get(), "e-kitchen-blind", "position", ""));
        const QString blind = row("e-kitchen-blind", "position");
        QVERIFY(page->shows(blind + " input"));
        page->value("document.querySelector(" + quoted(blind + " input") + ").focus()");
        page->press("End");
        QVERIFY(page->becomes(phase_is(blind, "handedOn")));
        page->reload();
        QVERIFY(home.sign_in(page.get(), "carol") && page->shows(blind));
        QVERIFY(page->click(card("e-kitchen-blind") + " button.chip"));
        QVERIFY(page->becomes(count_is(".card", 0)));
        QCOMPARE(page->troubles(), QStringList());
    }

    void change_by_somebody_else_is_seen_and_drawn() {
        const auto page = home.page_of("alice");
        const QString measured = row("e-bathroom-temperature", "temperature");
        QVERIFY(page && page->shows(measured));
        for (const char* const value : {"22.9", "24.1"}) {
            QCOMPARE(home.run().control({"set", "i-bathroom-temperature", value}), 0);
            QVERIFY(page->becomes(has_value(measured, value)));
        }
        QCOMPARE(page->text(measured + " .value"), QString("24.1 °C"));
        // Three values: two steps.
        QVERIFY(page->becomes("document.querySelector(" + quoted(measured + " .plot-line") +
                              ").getAttribute('d').split('V').length === 3"));
        QVERIFY(page->value("document.querySelector(" + quoted(measured + " .plot") +
                            ").getAttribute('aria-label')")
                    .toString()
                    .contains("from 22.6 °C to 24.1 °C"));
        QVERIFY(page->value("document.querySelectorAll(" + quoted(measured + " .plot-ticks text") +
                            ").length > 0")
                    .toBool());
    }

    void names_are_never_html() {
        const auto page = home.page_of("alice");
        QVERIFY(page && page->shows(card("e-html")));
        QCOMPARE(page->text(card("e-html") + " h3"),
                 QString("<img src=x onerror=\"window.broken=1\">"));
        QVERIFY(page->value("document.querySelector('img[src=x]') === null").toBool());
        QVERIFY(page->value("window.broken === undefined").toBool());
        QCOMPARE(page->troubles(), QStringList());
    }

    void developer_sees_packets_and_builds_requests() {
        const auto page = home.page_of("alice");
        QVERIFY(page && page->click("[data-view=developer]") && page->shows(".packets li"));
        QVERIFY(page->click("#developer form button.primary"));
        QVERIFY(
            page->becomes("document.querySelector('.answer').textContent.includes("
                          "'\"e-kitchen-blind\"')"));
        QVERIFY(
            page->becomes("[...document.querySelectorAll('.packets .sent .topic')].some((each) "
                          "=> each.textContent.endsWith('/request/get/elements/objects_list'))"));
        QVERIFY(page->type("#developer input[aria-label='Only topics with']", "no/such/topic"));
        QVERIFY(page->becomes(count_is(".packets li:not([hidden])", 0)));
        QVERIFY(page->click("#developer form button:nth-of-type(2)"));
        QVERIFY(
            page->becomes("document.querySelector('.answer').textContent.startsWith("
                          "'mosquitto_pub -V mqttv5 -h 127.0.0.1')"));
        QVERIFY(!page->text(".answer").contains("sample-alice"));
        QCOMPARE(page->troubles(), QStringList());
    }

    void script_within_the_page_does_not_run() {
        const auto page = home.page();
        QVERIFY(page);
        page->value(
            "(() => { const node = document.createElement('div'); try { node.innerHTML = "
            "'<img src=x onerror=\"window.inline = 1\">'; document.body.append(node); } "
            "catch (error) { window.caught = error.name; } })()");
        QVERIFY(page->becomes("window.caught === 'TypeError'"));
        QVERIFY(page->value("window.inline === undefined").toBool());
    }

    void keyboard_reaches_and_presses_everything() {
        const auto page = home.page_of("alice");
        QVERIFY(page && page->shows(card("e-bathroom-ceiling") + " [role=switch]:not([disabled])"));
        page->value("document.querySelector('input[type=search]').focus()");
        bool is_there = false;
        for (int i = 0; i < 6 && !is_there; ++i) {
            page->press("Tab");
            is_there = page->value("document.activeElement.matches('[role=switch]')").toBool();
        }
        QVERIFY(is_there);
        const QString id =
            page->value("document.activeElement.closest('.card').dataset.id").toString();
        page->press(" ");
        QVERIFY(page->becomes("document.querySelector(" + quoted(row(id, "execute")) +
                              ").dataset.phase !== undefined"));
    }

    void everything_has_a_name_for_those_who_hear_it() {
        const auto page = home.page_of("alice");
        QVERIFY(page && page->shows(card("e-bathroom-ceiling")));
        const QString nameless =
            page->value(
                    "[...document.querySelectorAll('button, input, select, textarea, [role], "
                    "svg:not([aria-hidden])')].filter((node) => !node.matches('[role=status], "
                    "[role=alert], [role=search]') && node.checkVisibility()).filter((node) => "
                    "!(node.ariaLabel || "
                    "node.labels?.length || node.textContent.trim())).map((node) => "
                    "node.outerHTML).join('\\n')")
                .toString();
        QCOMPARE(nameless, QString());
        QVERIFY(page->value("document.documentElement.lang === 'en'").toBool());
    }

    void texts_can_be_read_in_light_and_dark_data() {
        QTest::addColumn<QString>("scheme");
        QTest::newRow("light") << "light";
        QTest::newRow("dark") << "dark";
    }
    void texts_can_be_read_in_light_and_dark() {
        QFETCH(QString, scheme);
        const auto page = home.page_of("bob");
        QVERIFY(page && page->shows(card("e-bathroom-ceiling")));
        page->use_scheme(scheme);
        QCOMPARE(page->value(faint_texts).toString(), QString());
    }

 private:
    static QString is_checked(const QString& _selector, bool _is) {
        return QStringLiteral("document.querySelector(%1)?.ariaChecked === '%2'")
            .arg(quoted(_selector), _is ? "true" : "false");
    }
    static QString has_value(const QString& _row, const QString& _value) {
        return QStringLiteral("document.querySelector(%1)?.dataset.value === '%2'")
            .arg(quoted(_row), _value);
    }
    static bool add(page_t* _page, const QString& _id, const QString& _function,
                    const QString& _says) {
        return _page->type(".write-only input:not([list])", _id) &&
               _page->type(".write-only input[list]", _function) &&
               _page->click(".write-only button") &&
               _page->becomes(QStringLiteral("document.querySelector('.write-only .note')"
                                             ".textContent.startsWith(%1) && %2")
                                  .arg(quoted(_says), _says.isEmpty() ? "document.querySelector("
                                                                        "'.card') !== null"
                                                                      : "true"));
    }
    console_home_t home;
};

QTEST_GUILESS_MAIN(tst_console)
#include "tst_console.moc"

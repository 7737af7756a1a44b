#include <QtTest>

#include "kit/lamps_home.h"
#include "kit/mqtt_client_t.h"
#include "system/support/api_user.h"
#include "system/support/console_home_t.h"

using namespace support;

namespace {

constexpr int elements = 1000;
constexpr int moving = 50;
constexpr int seconds = 5;
// What a machine that is busy with other tests keeps to; alone it is about a third.
constexpr int first_paint_ms = 15'000;
constexpr int heap_mib = 96;

const QString user = QStringLiteral("user0");

/// 50 lamps have items of their own.
QJsonObject large_home() {
    return kit::lamps_home(elements, elements, kit::numbered_users(1));
}

}  // namespace

/// Large homes, small and large windows, and the pictures of the documentation.
class tst_console_sizes : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void thousand_elements_with_fifty_changes_a_second();
    void nothing_is_wider_than_the_window_data();
    void nothing_is_wider_than_the_window();
    void the_pictures_of_the_documentation();

 private:
    std::unique_ptr<console_home_t> sample;  ///< of the last two
};

void tst_console_sizes::thousand_elements_with_fifty_changes_a_second() {
    console_home_t home;
    QVERIFY2(home.start(large_home()), qPrintable(home.error()));
    const auto page = home.page();
    QElapsedTimer watch;
    watch.start();
    QVERIFY(page && home.sign_in(page.get(), user, kit::password_of(user)));
    QVERIFY(page->becomes(count_is(".card", elements), 60'000));
    const qint64 painted = watch.elapsed();
    QVERIFY(page->becomes("document.querySelectorAll('[role=switch]:not([disabled])').length === " +
                              QString::number(elements),
                          60'000));
    kit::mqtt_client_t other;
    QCOMPARE(other.sign_in(home.run().port(), user, kit::password_of(user)), 0);
    QJsonObject changes;
    for (int second = 1; second <= seconds; ++second) {
        QElapsedTimer turn;
        turn.start();
        const QString value = QString::number(second % 2);
        for (int i = 0; i < moving; ++i) {
            changes.insert(kit::lamp_id(i),
                           QJsonObject{{"functions", QJsonObject{{"execute", value}}}});
        }
        QCOMPARE(other.publish(request_topic(user, "set"),
                               QJsonDocument(QJsonObject{{"data", changes}}).toJson()),
                 0);
        QVERIFY(
            page->becomes("[...document.querySelectorAll('[data-function=execute]')].filter("
                          "(each) => each.dataset.value === '" +
                          value + "').length >= " + QString::number(moving) + " && [...Array(" +
                          QString::number(moving) +
                          ").keys()].every((i) => document.querySelector(`[data-id='e-${i}'] "
                          "[data-function]`).dataset.value === '" +
                          value + "')"));
        QTest::qWait(qMax(0, 1000 - int(turn.elapsed())));
    }
    const int heap =
        page->value("(gc(), Math.ceil(performance.memory.usedJSHeapSize / 1048576))").toInt();
    qInfo("first paint %lld ms, heap %d MiB", painted, heap);
    QVERIFY2(painted < first_paint_ms, qPrintable(QString::number(painted)));
    QVERIFY2(heap > 0 && heap < heap_mib, qPrintable(QString::number(heap)));
    QCOMPARE(page->troubles(), QStringList());
}

void tst_console_sizes::nothing_is_wider_than_the_window_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("is_phone");
    QTest::newRow("small phone") << 320 << true;
    QTest::newRow("phone") << 390 << true;
    QTest::newRow("tablet") << 820 << true;
    QTest::newRow("desktop") << 1280 << false;
    QTest::newRow("wide") << 2200 << false;
}

void tst_console_sizes::nothing_is_wider_than_the_window() {
    QFETCH(int, width);
    QFETCH(bool, is_phone);
    if (!sample) {
        sample = std::make_unique<console_home_t>();
        QVERIFY2(sample->start(), qPrintable(sample->error()));
    }
    const auto page = sample->page_of("alice");
    QVERIFY(page && page->shows(card("e-bathroom-ceiling")));
    page->resize(width, 800, is_phone);
    for (const char* const view : {"home", "developer"}) {
        QVERIFY(page->click(QStringLiteral("[data-view=%1]").arg(view)));
        QVERIFY(page->shows(QStringLiteral("#") + view));
        QCOMPARE(page->value("document.documentElement.scrollWidth").toInt(), width);
    }
    QCOMPARE(page->troubles(), QStringList());
}

void tst_console_sizes::the_pictures_of_the_documentation() {
    QVERIFY(sample);
    const QString folder = qEnvironmentVariable("TORLAN_PICTURES", PICTURES);
    QVERIFY(QDir().mkpath(folder));
    const auto page = sample->page_of("alice");
    QVERIFY(page && page->shows(card("e-bathroom-ceiling")));
    for (const char* const value : {"21.2", "21.6", "22.3", "22.1", "21.9"}) {
        QCOMPARE(sample->run().control({"set", "i-kitchen-temperature", value}), 0);
        QVERIFY(page->becomes("document.querySelector(" +
                              quoted(row("e-kitchen-temperature", "temperature")) +
                              ").dataset.value === '" + value + "'"));
    }
    const auto picture = [&](const char* _name) {
        return page->save_picture(folder + "/console-" + _name + ".png");
    };
    page->value(
        "(document.querySelectorAll('#home select')[1].value = 'room', "
        "document.querySelectorAll('#home select')[1].dispatchEvent(new Event('change')))");
    QVERIFY(page->shows("section[aria-label='Kitchen']"));
    page->resize(1180, 780);
    page->value(
        "document.querySelector('section[aria-label=Kitchen]').scrollIntoView(), "
        "scrollBy(0, -78)");
    QVERIFY(picture("home"));
    page->use_scheme("dark");
    QVERIFY(picture("dark"));
    page->use_scheme("light");
    page->resize(390, 780, true);
    page->value(
        "document.querySelector('section[aria-label=Kitchen]').scrollIntoView(), "
        "scrollBy(0, -96)");
    QVERIFY(picture("phone"));
    page->resize(1180, 780);
    page->value("scrollTo(0, 0)");
    QVERIFY(page->click("[data-view=developer]") && page->shows(".packets li"));
    QVERIFY(page->click("#developer form button.primary"));
    QVERIFY(page->becomes("document.querySelector('.answer').textContent.includes('data')"));
    QVERIFY(picture("developer"));
    QCOMPARE(page->troubles(), QStringList());
}

QTEST_GUILESS_MAIN(tst_console_sizes)
#include "tst_console_sizes.moc"

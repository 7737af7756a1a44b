#include "contract/support/transcript_t.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QTimer>
#include <algorithm>

#include "kit/furnish.h"

namespace support {

namespace {

QString text(const QJsonObject& _object, const char* _key) {
    return _object.value(QLatin1String(_key)).toString();
}

QString line(const QJsonValue& _event) {
    return QString::fromUtf8(QJsonDocument(_event.toObject()).toJson(QJsonDocument::Compact));
}

QStringList lines(const QJsonArray& _events) {
    QStringList texts;
    for (const QJsonValue& event : _events) {
        texts.append(line(event));
    }
    return texts;
}

}  // namespace

transcript_t::transcript_t(const QJsonObject& _document) {
    kit::furnish(home, _document.value(QLatin1String("installation")).toObject());
    const QJsonObject retained = _document.value(QLatin1String("retained")).toObject();
    for (auto message = retained.begin(); message != retained.end(); ++message) {
        endpoint->retain(message.key(), message.value());
    }
    driver = plugin.driver(home.get(), endpoint.get());
}

transcript_t::~transcript_t() = default;

QJsonArray transcript_t::play(const QJsonObject& _step) {
    endpoint->forget();
    act(_step);
    endpoint.settle();
    QList<QJsonObject> events = endpoint->history() + asked();
    if (!_step.value(QLatin1String("ordered")).toBool()) {
        std::sort(events.begin(), events.end(),
                  [](const QJsonObject& a, const QJsonObject& b) { return line(a) < line(b); });
    }
    QJsonArray result;
    for (const QJsonObject& event : std::as_const(events)) {
        result.append(event);
    }
    return result;
}

void transcript_t::act(const QJsonObject& _step) {
    const auto object = [&_step](const char* key) {
        return _step.value(QLatin1String(key)).toObject();
    };
    const QString act = text(_step, "do");
    if (act == QLatin1String("start") || act == QLatin1String("stop")) {
        driver->start(act == QLatin1String("start"));
    } else if (act == QLatin1String("deliver")) {
        deliver(object("message"));
    } else if (act == QLatin1String("deliver, then stop first")) {
        deliver(object("message"));
        driver->start(false);
        endpoint.drain();
    } else if (act == QLatin1String("item")) {
        home.set_item(text(_step, "id"), text(_step, "value"));
    } else if (act == QLatin1String("scenario")) {
        home.set_scenary(text(_step, "id"), _step.value(QLatin1String("execution")).toBool());
    } else if (act == QLatin1String("grant")) {
        grant(_step);
    } else if (act == QLatin1String("remove user")) {
        remove_user(text(_step, "id"));
    } else if (act == QLatin1String("remove element")) {
        home.remove_element(text(_step, "id"));
        Q_EMIT home.persistent()->onPersistentChangeElement({}, text(_step, "id"));
    } else if (act == QLatin1String("bulk change")) {
        Q_EMIT home.realtime()->onRealtimeChangeItems({});
        finish_wait(100);
    } else if (act == QLatin1String("debounce over")) {
        finish_wait(10000);
    } else if (act == QLatin1String("subscribe again")) {
        resubscribe();
    } else {
        qFatal("a transcript has an unknown step: %s", qPrintable(act));
    }
}

void transcript_t::deliver(const QJsonObject& _message) {
    endpoint->deliver(text(_message, "version"), text(_message, "user"), QStringLiteral("client"),
                      text(_message, "type"), text(_message, "topic"),
                      _message.value(QLatin1String("payload")).toObject(),
                      _message.value(QLatin1String("retain")).toBool());
}

void transcript_t::grant(const QJsonObject& _grant) {
    const QStringList words{QStringLiteral("deny"), QStringLiteral("read"), QStringLiteral("write"),
                            QStringLiteral("readwrite")};
    const QString element = text(_grant, "element");
    home.grant(text(_grant, "user"), element,
               static_cast<int>(words.indexOf(text(_grant, "word"))));
    Q_EMIT home.persistent()->onPersistentChangeElement({}, element);
}

void transcript_t::remove_user(const QString& _id) {
    home.remove_user(_id);
    Q_EMIT home.persistent()->onPersistentChangeUsers({});
}

void transcript_t::resubscribe() {
    using comunication::utility::subscribe_t;
    QMetaObject::invokeMethod(
        endpoint.get(), [this] { endpoint->subscription_status_api(subscribe_t::subscribe); },
        Qt::QueuedConnection);
}

void transcript_t::finish_wait(int _interval_ms) {
    kit::settle();
    const QList<QTimer*> timers = driver->findChildren<QTimer*>();
    for (QTimer* timer : timers) {
        if (timer->interval() == _interval_ms && timer->isActive()) {
            QSignalSpy over(timer, &QTimer::timeout);
            timer->setInterval(0);
            over.wait();
            timer->setInterval(_interval_ms);
            return;
        }
    }
    qFatal("no timer waits for %d ms", _interval_ms);
}

QList<QJsonObject> transcript_t::asked() {
    QList<QJsonObject> events;
    for (const auto& [id, value] : std::as_const(home.item_requests)) {
        events.append({{QStringLiteral("ask item"), id}, {QStringLiteral("value"), value}});
    }
    for (const auto& [id, execution] : std::as_const(home.scenary_requests)) {
        events.append(
            {{QStringLiteral("ask scenario"), id}, {QStringLiteral("execution"), execution}});
    }
    home.item_requests.clear();
    home.scenary_requests.clear();
    return events;
}

QString difference(const QJsonArray& _expected, const QJsonArray& _actual) {
    const QStringList expected = lines(_expected);
    const QStringList actual = lines(_actual);
    if (expected == actual) {
        return QString();
    }
    QStringList text;
    for (const QString& one : expected) {
        text.append((actual.contains(one) ? QStringLiteral("  ") : QStringLiteral("- ")) + one);
    }
    for (const QString& one : actual) {
        if (!expected.contains(one)) {
            text.append(QStringLiteral("+ ") + one);
        }
    }
    if (QSet<QString>(expected.cbegin(), expected.cend()) ==
        QSet<QString>(actual.cbegin(), actual.cend())) {
        text.append(QStringLiteral("the same lines in another order or number"));
    }
    return text.join(QLatin1Char('\n'));
}

}  // namespace support

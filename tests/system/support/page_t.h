#pragma once

#include <QJsonValue>
#include <QObject>
#include <QStringList>

#include "system/support/browser_t.h"

namespace support {

/// One page in a browser, with storage of its own: what somebody sees and does there.
class page_t : public QObject {
    Q_OBJECT

 public:
    page_t(browser_t* _browser, const QString& _address);
    ~page_t() override;

    /// The value of an expression; a promise is waited for. What fails is noted in troubles().
    QJsonValue value(const QString& _expression);
    QString text(const QString& _selector);
    /// Waits until an expression is true; false: it was not in time.
    bool becomes(const QString& _expression, int _limit_ms = 20'000);
    /// Waits until an element is there and shown.
    bool shows(const QString& _selector, int _limit_ms = 20'000);

    /// With the mouse, where the element is; false: it is not there.
    bool click(const QString& _selector);
    /// Keys into the element, after what was in it is gone.
    bool type(const QString& _selector, const QString& _text);
    /// One key, e.g. "Tab", "Enter", "ArrowRight", " ".
    void press(const QString& _key);

    /// Waits until everything is there again.
    void reload();
    void resize(int _width, int _height, bool _is_phone = false);
    /// "light" or "dark"; nothing moves in either.
    void use_scheme(const QString& _scheme);
    /// Of what is in the window; a PNG.
    bool save_picture(const QString& _file);

    /// Exceptions, refusals by the content security policy, failed loads.
    QStringList troubles() const { return noted; }

 private:
    void on_event(const QString& _session, const QString& _method, const QJsonObject& _parameters);
    QJsonObject call(const QString& _method, const QJsonObject& _parameters = {});

    browser_t* const browser;
    QString context;
    QString session;
    int loads = 0;
    QStringList noted;
};

/// A text as a literal of JavaScript.
QString quoted(const QString& _text);

}  // namespace support

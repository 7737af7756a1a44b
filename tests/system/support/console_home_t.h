#pragma once

#include <QJsonObject>
#include <memory>

#include "system/support/page_t.h"
#include "system/support/run_process_t.h"

namespace support {

/// Everything behind ./run with the sample home and what is odd besides, and a browser before it.
/// Sample users' passwords are "sample-" and their name.
class console_home_t {
 public:
    /// False and error().
    bool start();
    /// The same with another installation.
    bool start(const QJsonObject& _installation);
    QString error() const { return last_error; }

    run_process_t& run() { return program; }
    browser_t& browser() { return chromium; }

    /// A page before somebody has signed in.
    std::unique_ptr<page_t> page();
    /// A page of somebody who has; null: in vain.
    std::unique_ptr<page_t> page_of(const QString& _user, const QString& _password = {});
    static bool sign_in(page_t* _page, const QString& _user, const QString& _password = {});

    /// The sample home, with an element whose name is HTML, and a lamp that nobody can switch.
    static QJsonObject odd_sample();

 private:
    QTemporaryDir folder;
    run_process_t program;
    browser_t chromium;
    QString last_error;
};

/// Of one element's card, and of one function's row in it.
inline QString card(const QString& _id) {
    return QStringLiteral("[data-id='%1']").arg(_id);
}
inline QString row(const QString& _id, const QString& _function) {
    return card(_id) + QStringLiteral(" [data-function='%1']").arg(_function);
}

/// An expression: the last press there has come to this phase.
inline QString phase_is(const QString& _row, const QString& _phase) {
    return QStringLiteral("document.querySelector(%1)?.dataset.phase === '%2'")
        .arg(quoted(_row), _phase);
}
/// An expression: there are so many of these.
inline QString count_is(const QString& _selector, int _count) {
    return QStringLiteral("document.querySelectorAll(%1).length === %2")
        .arg(quoted(_selector))
        .arg(_count);
}

}  // namespace support

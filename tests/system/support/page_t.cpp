#include "system/support/page_t.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "kit/wait_until.h"

namespace support {

QString quoted(const QString& _text) {
    const QByteArray array = QJsonDocument(QJsonArray{_text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

page_t::page_t(browser_t* _browser, const QString& _address) : browser(_browser) {
    connect(browser, &browser_t::event, this, &page_t::on_event);
    context = browser->call("Target.createBrowserContext")["browserContextId"].toString();
    const QString target =
        browser
            ->call("Target.createTarget",
                   {{"url", "about:blank"}, {"browserContextId", context}})["targetId"]
            .toString();
    session =
        browser
            ->call("Target.attachToTarget", {{"targetId", target}, {"flatten", true}})["sessionId"]
            .toString();
    call("Runtime.enable");
    call("Log.enable");
    call("Page.enable");
    resize(1280, 860);
    use_scheme("light");
    call("Page.navigate", {{"url", _address}});
}

page_t::~page_t() {
    browser->call("Target.disposeBrowserContext", {{"browserContextId", context}});
}

QJsonObject page_t::call(const QString& _method, const QJsonObject& _parameters) {
    const QJsonObject result = browser->call(_method, _parameters, session);
    if (result.contains("failed")) {
        noted += result["failed"].toString();
    }
    return result;
}

void page_t::on_event(const QString& _session, const QString& _method,
                      const QJsonObject& _parameters) {
    if (_session != session) {
        return;
    }
    if (_method == "Page.loadEventFired") {
        ++loads;
    } else if (_method == "Runtime.exceptionThrown") {
        const QJsonObject details = _parameters["exceptionDetails"].toObject();
        noted += "exception: " + details["text"].toString() + ' ' +
                 details["exception"].toObject()["description"].toString();
    } else if (_method == "Log.entryAdded") {
        const QJsonObject entry = _parameters["entry"].toObject();
        noted += "log: " + entry["text"].toString() + ' ' + entry["url"].toString();
    }
}

QJsonValue page_t::value(const QString& _expression) {
    const QJsonObject result = call("Runtime.evaluate", {{"expression", _expression},
                                                         {"awaitPromise", true},
                                                         {"returnByValue", true},
                                                         {"userGesture", true}});
    if (result.contains("exceptionDetails")) {
        noted += "in " + _expression + ": " +
                 result["exceptionDetails"]["exception"]["description"].toString();
    }
    return result["result"]["value"];
}

QString page_t::text(const QString& _selector) {
    return value("document.querySelector(" + quoted(_selector) + ")?.textContent ?? null")
        .toString();
}

bool page_t::becomes(const QString& _expression, int _limit_ms) {
    // Looks at every change of the page, and at what no change tells of.
    return value(QStringLiteral("new Promise((done) => {"
                                "  const end = (is) => { clearInterval(look); watch.disconnect();"
                                "    clearTimeout(limit); done(is); };"
                                "  const check = () => { if (%1) end(true); };"
                                "  const watch = new MutationObserver(check);"
                                "  watch.observe(document, {subtree: true, childList: true,"
                                "    attributes: true, characterData: true});"
                                "  const look = setInterval(check, 50);"
                                "  const limit = setTimeout(() => end(false), %2);"
                                "  check(); })")
                     .arg(_expression)
                     .arg(_limit_ms))
        .toBool();
}

bool page_t::shows(const QString& _selector, int _limit_ms) {
    return becomes("document.querySelector(" + quoted(_selector) + ")?.checkVisibility() === true",
                   _limit_ms);
}

bool page_t::click(const QString& _selector) {
    const QJsonValue place =
        value("(() => { const node = document.querySelector(" + quoted(_selector) +
              "); if (!node) return null; node.scrollIntoView({block: 'center'});"
              "const box = node.getBoundingClientRect();"
              "return {x: box.x + box.width / 2, y: box.y + box.height / 2}; })()");
    if (!place.isObject()) {
        return false;
    }
    QJsonObject event{{"x", place["x"]}, {"y", place["y"]}, {"button", "left"}, {"clickCount", 1}};
    for (const char* const type : {"mousePressed", "mouseReleased"}) {
        event.insert("type", type);
        call("Input.dispatchMouseEvent", event);
    }
    return true;
}

bool page_t::type(const QString& _selector, const QString& _text) {
    const bool is_there =
        value("(() => { const node = document.querySelector(" + quoted(_selector) +
              "); if (!node) return false; node.focus(); node.select(); return true; })()")
            .toBool();
    if (is_there) {
        call("Input.insertText", {{"text", _text}});
    }
    return is_there;
}

void page_t::press(const QString& _key) {
    static const QHash<QString, int> codes{{"Tab", 9},         {"Enter", 13},     {" ", 32},
                                           {"ArrowRight", 39}, {"ArrowLeft", 37}, {"End", 35}};
    QJsonObject event{{"type", "keyDown"},
                      {"key", _key},
                      {"code", _key == " " ? "Space" : _key},
                      {"windowsVirtualKeyCode", codes.value(_key)}};
    if (_key == "Enter" || _key == " ") {
        event.insert("text", _key == "Enter" ? "\r" : " ");
    }
    call("Input.dispatchKeyEvent", event);
    event.insert("type", "keyUp");
    event.remove("text");
    call("Input.dispatchKeyEvent", event);
}

void page_t::reload() {
    const int before = loads;
    call("Page.reload");
    if (!kit::wait_until([&]() { return loads > before; })) {
        noted += "was not loaded again";
    }
}

void page_t::resize(int _width, int _height, bool _is_phone) {
    call("Emulation.setDeviceMetricsOverride",
         {{"width", _width}, {"height", _height}, {"deviceScaleFactor", 1}, {"mobile", _is_phone}});
    call("Emulation.setTouchEmulationEnabled", {{"enabled", _is_phone}});
}

void page_t::use_scheme(const QString& _scheme) {
    call("Emulation.setEmulatedMedia",
         {{"features",
           QJsonArray{QJsonObject{{"name", "prefers-color-scheme"}, {"value", _scheme}},
                      QJsonObject{{"name", "prefers-reduced-motion"}, {"value", "reduce"}}}}});
}

bool page_t::save_picture(const QString& _file) {
    // What has just come into the window is drawn with the next frame.
    value("new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)))");
    const QByteArray bytes = QByteArray::fromBase64(
        call("Page.captureScreenshot", {{"format", "png"}})["data"].toString().toLatin1());
    QFile file(_file);
    return bytes.startsWith("\x89PNG") && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size();
}

}  // namespace support

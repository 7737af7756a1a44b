#include "system/support/console_home_t.h"

#include <QFile>
#include <QJsonDocument>

namespace support {

QJsonObject console_home_t::odd_sample() {
    QFile file(SAMPLE);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read the sample home");
    }
    QJsonObject home = QJsonDocument::fromJson(file.readAll()).object();
    QJsonObject items = home["items"].toObject();
    items.insert("i-stuck", QJsonObject{{"value", "0"}, {"writable", false}});
    home.insert("items", items);
    QJsonObject elements = home["elements"].toObject();
    const QJsonObject lamp{
        {"type", 1}, {"flags", 0}, {"functions", QJsonObject{{"execute", "i-stuck"}}}};
    for (const auto& [id, name] : {std::pair{"e-html", "<img src=x onerror=\"window.broken=1\">"},
                                   std::pair{"e-stuck", "Stuck lamp"}}) {
        QJsonObject element = lamp;
        element.insert("name", name);
        elements.insert(id, element);
    }
    home.insert("elements", elements);
    QJsonObject permissions = home["permissions"].toObject();
    for (const QString& user : permissions.keys()) {
        QJsonObject grants = permissions[user].toObject();
        if (home["users"][user]["username"] == "alice") {
            grants.insert("e-html", "readwrite");
            grants.insert("e-stuck", "readwrite");
        }
        permissions.insert(user, grants);
    }
    home.insert("permissions", permissions);
    return home;
}

bool console_home_t::start() {
    return start(odd_sample());
}

bool console_home_t::start(const QJsonObject& _installation) {
    QFile file(folder.filePath("home.json"));
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(_installation).toJson()) < 0) {
        last_error = "cannot write the installation";
        return false;
    }
    file.close();
    if (!program.start(file.fileName())) {
        last_error = "torlan-run: " + QString::fromUtf8(program.shown());
        return false;
    }
    if (!chromium.start()) {
        last_error = chromium.error();
        return false;
    }
    return true;
}

std::unique_ptr<page_t> console_home_t::page() {
    auto page = std::make_unique<page_t>(&chromium, program.console());
    return page->shows("#sign-in") ? std::move(page) : nullptr;
}

bool console_home_t::sign_in(page_t* _page, const QString& _user, const QString& _password) {
    return _page->shows("#sign-in") && _page->type("input[name=user]", _user) &&
           _page->type("input[name=password]",
                       _password.isEmpty() ? "sample-" + _user : _password) &&
           _page->click("#sign-in button");
}

std::unique_ptr<page_t> console_home_t::page_of(const QString& _user, const QString& _password) {
    auto opened = page();
    const bool is_in = opened && sign_in(opened.get(), _user, _password) &&
                       opened->shows("#home") &&
                       opened->becomes(
                           "!document.querySelector('.empty')?.textContent"
                           ".startsWith('Reading')");
    return is_in ? std::move(opened) : nullptr;
}

}  // namespace support

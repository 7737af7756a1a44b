#pragma once

#include <QList>
#include <QString>

/// Texts that are names and texts that are none: whatever rules names is tried with all of them.
namespace sample {

struct name_t {
    const char* title;
    QString text;
    QString error;  ///< empty: a name
};

inline QList<name_t> identifiers() {
    const QString alphabet = QStringLiteral("must be 1 to 64 of the characters 0-9 a-z A-Z . _ -");
    const QString reserved = QStringLiteral("must not contain \"request\"");
    return {{"every class", QStringLiteral("aZ09._-"), {}},
            {"longest", QString(64, u'x'), {}},
            {"Request is another word", QStringLiteral("Request"), {}},
            {"too long", QString(65, u'x'), alphabet},
            {"far too long", QString(82, u'x'), alphabet},
            {"empty", QStringLiteral(""), alphabet},
            {"blank", QStringLiteral("a b"), alphabet},
            {"two levels", QStringLiteral("a/b"), alphabet},
            {"one level", QStringLiteral("+"), alphabet},
            {"all levels", QStringLiteral("#"), alphabet},
            {"the broker's user", QStringLiteral("%u"), alphabet},
            {"umlaut", QStringLiteral("ä"), alphabet},
            {"digit of another script", QStringLiteral("\u0663"), alphabet},
            {"host's own name", QStringLiteral("@host"), alphabet},
            {"trailing line feed", QStringLiteral("a\n"), alphabet},
            {"NUL", QStringLiteral("a") + QChar(u'\0'), alphabet},
            {"after a NUL", QStringLiteral("a") + QChar(u'\0') + QStringLiteral("/#"), alphabet},
            {"half a character", QString(QChar(0xd800)), alphabet},
            {"reserved", QStringLiteral("my-requests"), reserved}};
}

inline QList<name_t> topics() {
    const QString levels = QStringLiteral(
        "must be levels of 1 to 64 of the characters 0-9 a-z A-Z . _ - joined by \"/\", at most "
        "256 characters");
    const QString api = QStringLiteral("must not begin with the level \"api\"");
    return {
        {"one level", QStringLiteral("home"), {}},
        {"three levels", QStringLiteral("a/b/c"), {}},
        {"api below", QStringLiteral("home/api"), {}},
        {"api is a part", QStringLiteral("apiary"), {}},
        {"longest", QStringLiteral("abc/").repeated(63) + QStringLiteral("wxyz"), {}},
        {"api", QStringLiteral("api"), api},
        {"api first", QStringLiteral("api/x"), api},
        {"reserved", QStringLiteral("a/request"), QStringLiteral("must not contain \"request\"")},
        {"leading slash", QStringLiteral("/a"), levels},
        {"trailing slash", QStringLiteral("a/"), levels},
        {"empty level", QStringLiteral("a//b"), levels},
        {"wildcard", QStringLiteral("a/#"), levels},
        {"long level", QStringLiteral("a/") + QString(65, u'x'), levels},
        {"too long", QStringLiteral("abc/").repeated(63) + QStringLiteral("vwxyz"), levels}};
}

}  // namespace sample

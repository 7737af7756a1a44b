#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace torlan {

/// A word that a command takes, by its place.
struct argument_t {
    QString name;         ///< "USER", which says what it names
    QStringList instead;  ///< options that can stand in its place
    bool is_optional = false;
    bool is_many = false;  ///< any number, also none; the last one

    bool operator==(const argument_t&) const = default;
};

/// Reads a command's arguments: names with blanks between them, "[NAME]" may be left out, "NAME..."
/// comes any number of times, "NAME|--option" gives way to the option.
QList<argument_t> arguments_of(const char* _text);

}  // namespace torlan

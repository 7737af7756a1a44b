#pragma once

#include <QJsonObject>
#include <QStringList>

namespace torlan {

enum class about_t {
    one_element,
    list,  ///< of elements
};

/// What an answer of the API refuses, in its own words: "404 Not found element e-x", of functions
/// of a write "level: 404". Empty: nothing. Pure.
QStringList refusals(const QJsonObject& _answer, about_t _about);

}  // namespace torlan

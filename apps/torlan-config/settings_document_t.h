#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>
#include <optional>

namespace torlan {

/// The settings as one JSON object, read and changed along a path of keys; a plain value.
class settings_document_t {
 public:
    settings_document_t() = default;
    explicit settings_document_t(const QJsonObject& _root) : root(_root) {}

    const QJsonObject& object() const { return root; }

    /// The value at @p _keys, the whole document without any; nothing when there is none. Arrays
    /// have no keys.
    std::optional<QJsonValue> get(const QStringList& _keys) const;

    /// Puts @p _value at @p _keys and makes the objects that are missing on the way. False, and
    /// nothing changed, when something else than an object is in the way, or when the whole
    /// document is to become something else than an object.
    bool set(const QStringList& _keys, const QJsonValue& _value);

    /// Objects and arrays inside of each other: 1 for a document of scalars.
    int depth() const;

 private:
    QJsonObject root;
};

}  // namespace torlan

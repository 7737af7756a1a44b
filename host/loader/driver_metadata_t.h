#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <optional>

namespace loader {

/// What a plugin says about itself: four header bytes and a CBOR map.
struct driver_metadata_t {
    int format = 0;         ///< of the descriptor; 1 is the only one known
    int qt_major = 0;       ///< Qt the plugin was labelled with
    int qt_minor = 0;       ///< may be newer than this process's Qt: drivers use little of it
    int flags = 0;          ///< processor level and debug build; not looked at
    QString interface;      ///< interface identifier
    QString class_name;     ///< without namespace
    QJsonObject meta_data;  ///< the plugin's own object

    /// Reads a note's descriptor; nothing when it cannot be understood.
    static std::optional<driver_metadata_t> parse(const QByteArray& _descriptor);
};

}  // namespace loader

#include "loader/driver_metadata_t.h"

#include <QCborMap>
#include <QCborValue>

namespace loader {

namespace {

constexpr qsizetype header_size = 4;
constexpr int known_format = 1;
constexpr int known_qt_major = 6;

// Keys of the map, as Qt's tooling numbers them.
enum key_t : qint64 { interface_key = 2, class_name_key = 3, meta_data_key = 4 };

}  // namespace

std::optional<driver_metadata_t> driver_metadata_t::parse(const QByteArray& _descriptor) {
    if (_descriptor.size() <= header_size) {
        return {};
    }
    driver_metadata_t data;
    data.format = static_cast<quint8>(_descriptor[0]);
    data.qt_major = static_cast<quint8>(_descriptor[1]);
    data.qt_minor = static_cast<quint8>(_descriptor[2]);
    data.flags = static_cast<quint8>(_descriptor[3]);
    if (data.format != known_format || data.qt_major != known_qt_major) {
        return {};
    }
    QCborParserError error;
    const QCborMap map = QCborValue::fromCbor(_descriptor.mid(header_size), &error).toMap();
    if (error.error != QCborError::NoError || !map.value(interface_key).isString()) {
        return {};
    }
    data.interface = map.value(interface_key).toString();
    data.class_name = map.value(class_name_key).toString();
    data.meta_data = map.value(meta_data_key).toMap().toJsonObject();
    return data;
}

}  // namespace loader

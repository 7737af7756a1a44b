#pragma once

#include <QByteArray>

namespace support {

/// The driver's descriptor, spelled out: format, Qt 6.5, release, then a map of indefinite length.
inline QByteArray metadata_bytes() {
    return QByteArray::fromHex("01060500bf") + QByteArray::fromHex("02781b") +
           "org.kelma.torlan.interfaces" + QByteArray::fromHex("0373") + "plugin_driver_api_t" +
           QByteArray::fromHex("04a169") + "interface" + QByteArray::fromHex("a264") + "port" +
           QByteArray::fromHex("68") + "dev/xxxx" + QByteArray::fromHex("64") + "type" +
           QByteArray::fromHex("62") + "TP" + QByteArray::fromHex("ff");
}

/// The whole note up to its padding: the sizes of name and descriptor, the type, the name.
inline QByteArray metadata_note() {
    const quint32 head[] = {12, 92, 0x74510001};
    return QByteArray(reinterpret_cast<const char*>(head), sizeof head) +
           QByteArray("qt-project!\0", 12) + metadata_bytes();
}

}  // namespace support

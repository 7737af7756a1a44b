#pragma once

#include <QByteArray>
#include <QList>

#include "kit/zip_text.h"

/// ETS projects of a home that nobody has, in pieces: what a test is about stands in the test.
namespace kit {

/// The root element of ETS's files around what is inside.
inline QByteArray ets_file(const QByteArray& _inside, int _version = 22) {
    return "\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<KNX xmlns=\"http://knx.org/xml/project/" +
           QByteArray::number(_version) + "\" CreatedBy=\"tests\">" + _inside + "</KNX>";
}

inline QByteArray ets_information(const char* _style = "ThreeLevel") {
    return ets_file(
        QByteArray(
            "<Project Id=\"P-0AF1\"><ProjectInformation Name=\"Mill\" GroupAddressStyle=\"") +
        _style + "\"/></Project>");
}

inline QByteArray ets_installation(const QByteArray& _inside) {
    return ets_file("<Project Id=\"P-0AF1\"><Installations><Installation Name=\"\">" + _inside +
                    "</Installation></Installations></Project>");
}

/// The addresses of an installation in one main and one middle group.
inline QByteArray ets_addresses(const QByteArray& _addresses) {
    return "<GroupAddresses><GroupRanges><GroupRange Name=\"House\"><GroupRange Name=\"Ground\">" +
           _addresses + "</GroupRange></GroupRange></GroupRanges></GroupAddresses>";
}

/// "GA-1" is 0/0/1.
inline QByteArray ets_address(int _raw, const QByteArray& _name, const QByteArray& _more = {}) {
    const QByteArray number = QByteArray::number(_raw);
    return "<GroupAddress Id=\"P-0AF1-0_GA-" + number + "\" Address=\"" + number + "\" Name=\"" +
           _name + "\" " + _more + "/>";
}

inline QByteArray ets_type(const QByteArray& _type) {
    return "DatapointType=\"" + _type + "\"";
}

/// The files of a project as they are in a zip.
inline QList<zip_file_t> ets_files(const QByteArray& _installation,
                                   const char* _style = "ThreeLevel") {
    return {{"knx_master.xml", ets_file("<MasterData/>")},
            {"P-0AF1/project.xml", ets_information(_style)},
            {"P-0AF1/0.xml", ets_installation(_installation)}};
}

inline QByteArray ets_project(const QByteArray& _installation, const char* _style = "ThreeLevel") {
    return zip_of(ets_files(_installation, _style));
}

/// The same with the project in a zip of its own, which takes a password.
inline QByteArray ets_locked(const QByteArray& _installation, zip_lock_t _lock,
                             const QByteArray& _zip_password) {
    const QByteArray inner =
        zip_of({{"project.xml", ets_information()}, {"0.xml", ets_installation(_installation)}},
               _lock, _zip_password);
    return zip_of({{"knx_master.xml", ets_file("<MasterData/>")}, {"P-0AF1.zip", inner}});
}

}  // namespace kit

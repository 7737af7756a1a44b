#include "first_settings.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace torlan {

namespace {

QJsonObject paths(const QString& _data, const QString& _drivers) {
    return {{QStringLiteral("cacerts"), QJsonArray()},
            {QStringLiteral("client_communication"), _data + QStringLiteral("/client")},
            {QStringLiteral("logs"), _data + QStringLiteral("/logs")},
            {QStringLiteral("plugins"), _drivers},
            {QStringLiteral("system_ca_certs"), QStringLiteral("/etc/ssl/certs")}};
}

QJsonObject with_id() {
    return {{QStringLiteral("installation_id"), QString()}};
}

}  // namespace

QByteArray first_settings(const QString& _data, const QString& _drivers) {
    const QJsonObject program{
        {QStringLiteral("comunication"), QJsonObject{{QStringLiteral("global"), with_id()}}},
        {QStringLiteral("paths"), paths(_data, _drivers)},
        {QStringLiteral("urls"), QJsonObject{{QStringLiteral("cloud_service"), QString()},
                                             {QStringLiteral("cloud_web"), QString()}}}};
    const QJsonObject machine{
        {QStringLiteral("device"), QJsonObject{{QStringLiteral("product_name"), QString()}}},
        {QStringLiteral("drdconf"), QJsonObject{{QStringLiteral("serial"), QString()}}},
        {QStringLiteral("mosquitto"), QJsonObject{{QStringLiteral("mqtt_cloud_url"), QString()}}},
        {QStringLiteral("torlan"), program}};
    return QJsonDocument(QJsonObject{{QStringLiteral("installation"), with_id()},
                                     {QStringLiteral("static"), machine}})
        .toJson();
}

}  // namespace torlan

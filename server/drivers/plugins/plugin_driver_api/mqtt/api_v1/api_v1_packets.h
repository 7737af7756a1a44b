#pragma once

#include <QJsonObject>
#include <QString>

/// Answer and error packets of version 1. Pure functions; clients parse the texts, keep them.
namespace interfaces::v1 {

/// {"data": @p _data}.
QJsonObject data_packet(const QJsonObject& _data);

/// What is retained of an element: @p _json as data; empty, and so not published, when that is.
QJsonObject update_packet(const QJsonObject& _json);

/// @p _packet with "error" and "message" inserted.
QJsonObject error_packet(QJsonObject _packet, int _code, const QString& _message);

QJsonObject non_compliant_topic();    ///< 400
QJsonObject non_compliant_payload();  ///< 400
QJsonObject unauthorized_user();      ///< 401
/// 404 of a request on one element.
QJsonObject not_found_element(const QString& _id);
/// 404 of one element inside a list write; the text differs from the one above.
QJsonObject non_found_element(const QString& _id);
QJsonObject topic_not_valid();        ///< 405
QJsonObject presentation_required();  ///< 406
QJsonObject filter_type_error();      ///< 409

}  // namespace interfaces::v1

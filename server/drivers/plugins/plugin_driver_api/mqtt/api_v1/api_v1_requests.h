#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace interfaces {
class data_api_elements_t;
}

/// The four requests of version 1. Each takes the payload and the captured texts of its route
/// (the whole match, the user, a second level, and for one element its id) and gives the answer
/// packet. A null collection counts as empty. Plugin's thread.
namespace interfaces::v1 {

QJsonObject read_all(data_api_elements_t* _elements, const QJsonObject& _payload,
                     const QStringList& _captures);
QJsonObject read_one(data_api_elements_t* _elements, const QJsonObject& _payload,
                     const QStringList& _captures);
QJsonObject write_one(data_api_elements_t* _elements, const QJsonObject& _payload,
                      const QStringList& _captures);
QJsonObject write_many(data_api_elements_t* _elements, const QJsonObject& _payload,
                       const QStringList& _captures);

}  // namespace interfaces::v1

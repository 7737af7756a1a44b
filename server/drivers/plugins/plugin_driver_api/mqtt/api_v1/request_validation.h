#pragma once

#include <QJsonValue>

namespace interfaces {

/// Shape checks of version 1 request payloads. Pure functions.

/// 0: no filters (also when "filters" is no object), 1: valid filters, -1: "functions" or "types"
/// is there and is not an array with at least one entry. Entries are not type-checked.
int check_data_request_filters(const QJsonValue& payload);

/// Whether "data"."functions" is a non-empty object.
bool check_data_request_element(const QJsonValue& payload);

/// Whether "data" is an object and every entry's "functions" is a non-empty object. An empty
/// "data" passes.
bool check_data_request_elements(const QJsonValue& payload);

}  // namespace interfaces

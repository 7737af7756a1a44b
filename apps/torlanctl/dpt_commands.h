#pragma once

#include <QStringList>

#include "base/result_t.h"

/// What "torlanctl dpt ..." does; the folder is not looked at.
namespace torlan {

base::result_t encode_value(const QString& _data, const QStringList& _arguments);
base::result_t decode_value(const QString& _data, const QStringList& _arguments);
base::result_t list_types(const QString& _data, const QStringList& _arguments);

}  // namespace torlan

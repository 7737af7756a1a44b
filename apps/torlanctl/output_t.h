#pragma once

#include <QByteArray>
#include <QJsonObject>

#include "base/result_t.h"

namespace torlan {

/// Standard output, written in pieces: what is shown may be larger than memory should hold.
class output_t {
 public:
    void line(const QString& _text) { add(_text.toUtf8() + '\n'); }
    void line(const QJsonObject& _object);
    void add(const QByteArray& _bytes);

    /// Whether somebody still reads; if not, nothing more need be made.
    bool is_read() const { return result.is_ok(); }
    /// Writes the rest.
    base::result_t finish();

 private:
    QByteArray waiting;
    base::result_t result;
};

}  // namespace torlan

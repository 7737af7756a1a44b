#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include "base/result_t.h"

namespace torlan {

/// Reads one file as a whole, handling events meanwhile: a file may be a pipe whose writer takes
/// its time or never comes. Main thread, with an application object; once only.
class file_reader_t : public QObject {
    Q_OBJECT

 public:
    /// @param _max_bytes a larger file is not read
    file_reader_t(QString _path, qint64 _max_bytes, QObject* _parent = nullptr);
    ~file_reader_t() override;

    /// A failure's sentence begins with the path: "home.json: cannot be read: ...".
    base::result_of_t<QByteArray> read();

    /// Makes read() fail soon.
    void give_up();

 Q_SIGNALS:
    void given_up();

 private:
    base::result_t failed(const QString& _what) const;
    bool wait() const;

    const QString path;
    const qint64 max_bytes;
    int descriptor = -1;
    bool is_given_up = false;
};

}  // namespace torlan

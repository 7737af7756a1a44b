#pragma once

#include <QElapsedTimer>
#include <QString>

namespace torlan {

/// A line at the bottom of a terminal that says what is being read, and goes with this object.
/// Standard error; nothing where that is no terminal, and nothing for what is done at once.
class progress_line_t {
 public:
    progress_line_t();
    ~progress_line_t();
    Q_DISABLE_COPY_MOVE(progress_line_t)

    void show(const QString& _what, qint64 _bytes);

 private:
    const bool is_terminal;
    bool is_shown = false;
    QElapsedTimer since;
};

}  // namespace torlan

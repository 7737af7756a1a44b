#pragma once

#include <QElapsedTimer>
#include <QString>

namespace torlan {

/// A line at the bottom of a terminal that says what is being done, and goes with this object.
/// Standard error; nothing where that is no terminal. Nobody else may write there meanwhile.
class progress_line_t {
 public:
    progress_line_t();
    ~progress_line_t();
    Q_DISABLE_COPY_MOVE(progress_line_t)

    /// At once: before a long call.
    void show(const QString& _what);
    /// Some times a second at most, and nothing for what is done at once.
    void show_often(const QString& _what);

 private:
    const bool is_terminal;
    bool is_shown = false;
    QElapsedTimer since;
};

}  // namespace torlan

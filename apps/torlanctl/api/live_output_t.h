#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace torlan {

/// Standard output for lines that come by themselves, whoever reads slowly or not at all: nothing
/// here waits. What waits is bounded, what is left out is told.
class live_output_t : public QObject {
    Q_OBJECT

 public:
    /// @p _descriptor open as long as this object lives
    explicit live_output_t(int _descriptor, QObject* _parent = nullptr);
    /// Writes what goes without waiting.
    ~live_output_t() override;

    /// Whole lines.
    void add(const QByteArray& _lines);

 Q_SIGNALS:
    /// Nothing more can be written. @p _error empty: the reader has gone.
    void ended(const QString& _error);
    /// So many were left out.
    void left_out(qint64 _lines);

 private:
    void write();
    void look_for_reader();
    void end(const QString& _error);

    const int descriptor;
    QSocketNotifier room;    ///< while something waits
    QSocketNotifier reader;  ///< a pipe's end shows as something to read
    QByteArray waiting;
    qint64 missing = 0;
};

}  // namespace torlan

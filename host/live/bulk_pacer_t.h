#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <chrono>

namespace database::live {

/// Says when a bulk announcement may be made. Drivers read everything again 100 ms after the last
/// one: one that comes sooner than that puts them off, and a stream of them for as long as it
/// lasts.
class bulk_pacer_t : public QObject {
    Q_OBJECT

 public:
    /// What drivers wait, and time to read.
    static constexpr std::chrono::milliseconds usual_gap{250};

    explicit bulk_pacer_t(std::chrono::milliseconds _gap = usual_gap, QObject* _parent = nullptr);
    ~bulk_pacer_t() override;

    /// due() follows: at once, perhaps before this returns, or one gap after the former due(). Once
    /// for all that was asked until then.
    void ask();

 Q_SIGNALS:
    void due();

 private:
    void tell();

    const std::chrono::milliseconds gap;
    QTimer timer;
    QElapsedTimer since_due;  ///< invalid: none yet
};

}  // namespace database::live

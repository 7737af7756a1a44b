#pragma once

#include <QObject>
#include <QSet>
#include <QTimer>
#include <chrono>

namespace database::live {

/// Puts refused writes into words for the log, so that a flood of them does not fill it: each item
/// once in a period, so many items one by one, the rest counted when the period is over.
class refusal_teller_t : public QObject {
    Q_OBJECT

 public:
    static constexpr std::chrono::milliseconds usual_period{60'000};
    /// Items of a period that are told one by one.
    static constexpr qsizetype singly = 20;

    explicit refusal_teller_t(std::chrono::milliseconds _period = usual_period,
                              QObject* _parent = nullptr);
    /// Ends the period.
    ~refusal_teller_t() override;

    /// See write_gate_t::item_refused().
    void take(const QString& _id, const QString& _value, const QString& _reason);

 Q_SIGNALS:
    void told(const QString& _sentence);

 private:
    void end_period();

    QTimer period;  ///< runs from the first refusal on
    QSet<QString> items;
    qint64 untold = 0;
};

}  // namespace database::live

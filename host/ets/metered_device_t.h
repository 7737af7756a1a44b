#pragma once

#include <QIODevice>

namespace ets {

/// Passes another device's bytes on, as many as it is allowed until it is allowed more.
class metered_device_t : public QIODevice {
    Q_OBJECT

 public:
    metered_device_t(QIODevice* _source, qint64 _allowance) : source(_source), whole(_allowance) {
        open(QIODevice::ReadOnly);
    }

    void allow_again() { left = whole; }
    /// Since the beginning.
    qint64 count() const { return passed; }
    bool is_refused() const { return refused; }
    /// The other device could not be read.
    bool has_failed() const { return failed; }

    bool isSequential() const override { return true; }

 protected:
    qint64 readData(char* _data, qint64 _size) override;
    qint64 writeData(const char*, qint64) override { return -1; }

 private:
    QIODevice* const source;
    const qint64 whole;
    qint64 left = whole;
    qint64 passed = 0;
    bool refused = false;
    bool failed = false;
};

}  // namespace ets

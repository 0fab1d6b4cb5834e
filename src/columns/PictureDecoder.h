#pragma once

#include <QObject>
#include <QThreadPool>

#include <functional>

namespace quillery {

// Decodes pictures off the main thread, one at a time so that at most one full-size picture is in
// memory while it is scaled to the size shown, and tells the views when one is done.
class PictureDecoder : public QObject {
    Q_OBJECT

public:
    // The application's decoder; made on the main thread at first use.
    static PictureDecoder& instance();
    ~PictureDecoder() override;

    // Runs the decoding on the decoder's thread; decoded() follows on the main thread.
    void start(std::function<void()> decode);

signals:
    void decoded();

private:
    explicit PictureDecoder(QObject* parent);

    QThreadPool m_pool;
};

} // namespace quillery

#include "columns/PictureDecoder.h"

#include <QCoreApplication>

namespace quillery {

PictureDecoder& PictureDecoder::instance() {
    static PictureDecoder* decoder = new PictureDecoder(QCoreApplication::instance());
    return *decoder;
}

PictureDecoder::PictureDecoder(QObject* parent)
    : QObject(parent) {
    m_pool.setMaxThreadCount(1);
}

PictureDecoder::~PictureDecoder() {
    // A decoding still running would announce itself to a decoder half destroyed.
    m_pool.clear();
    m_pool.waitForDone();
}

void PictureDecoder::start(std::function<void()> decode) {
    m_pool.start([this, decode = std::move(decode)] {
        decode();
        QMetaObject::invokeMethod(
            this, [this] { emit decoded(); }, Qt::QueuedConnection);
    });
}

} // namespace quillery

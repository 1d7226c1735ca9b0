#include "network/bounded_network_read.h"

#include <QNetworkReply>
#include <QTimer>

#include <utility>

namespace {
// Qt's read-ahead for one reply: enough to keep a fast connection busy, small enough that a
// refused reply never costs more than this beyond the limit.
constexpr qint64 ReadAheadBytes = 64 * 1024;

QString seconds(int ms)
{
    const int whole = (ms + 999) / 1000;
    return whole == 1 ? QStringLiteral("1 second") : QStringLiteral("%1 seconds").arg(whole);
}
} // namespace

BoundedNetworkRead *BoundedNetworkRead::watch(QNetworkReply *reply, const Limits &limits)
{
    return new BoundedNetworkRead(reply, limits);
}

BoundedNetworkRead *BoundedNetworkRead::of(const QNetworkReply *reply)
{
    return reply ? reply->findChild<BoundedNetworkRead *>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

BoundedNetworkRead::BoundedNetworkRead(QNetworkReply *reply, const Limits &limits)
    : QObject(reply), m_reply(reply), m_limits(limits), m_total(new QTimer(this)), m_stall(new QTimer(this))
{
    reply->setReadBufferSize(ReadAheadBytes);
    m_total->setSingleShot(true);
    m_stall->setSingleShot(true);
    connect(m_total, &QTimer::timeout, this, [this] { giveUp(Stop::TookTooLong); });
    connect(m_stall, &QTimer::timeout, this, [this] { giveUp(Stop::Stalled); });
    connect(reply, &QNetworkReply::metaDataChanged, this, &BoundedNetworkRead::checkAnnouncedLength);
    connect(reply, &QNetworkReply::readyRead, this, &BoundedNetworkRead::drain);
    connect(reply, &QNetworkReply::finished, this, [this] {
        m_total->stop();
        m_stall->stop();
    });
    if (reply->isFinished())
        return;
    if (limits.totalMs > 0)
        m_total->start(limits.totalMs);
    restartStallWait();
}

void BoundedNetworkRead::restartStallWait()
{
    if (m_limits.stallMs > 0)
        m_stall->start(m_limits.stallMs);
}

void BoundedNetworkRead::checkAnnouncedLength()
{
    if (!m_reply)
        return;
    restartStallWait();
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && length.toLongLong() > m_limits.maxBytes)
        giveUp(Stop::TooLarge);
}

void BoundedNetworkRead::drain()
{
    if (!m_reply || m_stop != Stop::None)
        return;
    restartStallWait();
    // One byte beyond the limit is enough to know the reply is too large.
    const qint64 room = m_limits.maxBytes + 1 - m_data.size();
    m_data += m_reply->read(qMax<qint64>(0, qMin(room, m_reply->bytesAvailable())));
    if (m_data.size() > m_limits.maxBytes) {
        m_data.clear();
        giveUp(Stop::TooLarge);
    }
}

QByteArray BoundedNetworkRead::takeData()
{
    drain();
    return std::exchange(m_data, {});
}

void BoundedNetworkRead::giveUp(Stop reason)
{
    if (m_stop != Stop::None)
        return;
    m_stop = reason;
    m_total->stop();
    m_stall->stop();
    m_data.clear();
    if (m_reply && !m_reply->isFinished())
        m_reply->abort();
}

QString BoundedNetworkRead::stopPhrase() const
{
    switch (m_stop) {
    case Stop::TooLarge:
        return m_limits.maxBytes % (1024 * 1024) == 0
                   ? QStringLiteral("reply larger than %1 MiB").arg(m_limits.maxBytes / (1024 * 1024))
                   : QStringLiteral("reply larger than %1 KB").arg((m_limits.maxBytes + 1023) / 1024);
    case Stop::TookTooLong:
        return QStringLiteral("no complete answer within %1").arg(seconds(m_limits.totalMs));
    case Stop::Stalled:
        return QStringLiteral("the server sent nothing for %1").arg(seconds(m_limits.stallMs));
    case Stop::None:
        break;
    }
    return {};
}

// JSON-RPC over standard input and output with the framing editors use.

#include "tools/lcdcfg/lsp_protocol.h"

#include <QtCore/QJsonDocument>

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace lcdcfg {

bool Connection::fill() {
    char chunk[65536];
    for (;;) {
        const ssize_t n = ::read(0, chunk, sizeof chunk);
        if (n > 0) {
            m_buffer.append(chunk, int(n));
            return true;
        }
        if (n == 0 || errno != EINTR) return false;
    }
}

bool Connection::read(QJsonObject* message) {
    for (;;) {
        const int end = m_buffer.indexOf("\r\n\r\n");
        if (end >= 0) {
            int length = -1;
            for (const QByteArray& line : m_buffer.left(end).split('\n')) {
                const QByteArray header = line.trimmed();
                if (header.toLower().startsWith("content-length:")) length = header.mid(15).trimmed().toInt();
            }
            if (length < 0) return false;
            while (m_buffer.size() < end + 4 + length)
                if (!fill()) return false;
            const QJsonDocument doc = QJsonDocument::fromJson(m_buffer.mid(end + 4, length));
            m_buffer.remove(0, end + 4 + length);
            if (doc.isObject()) {
                *message = doc.object();
                return true;
            }
            continue; // not an object: skipped
        }
        if (!fill()) return false;
    }
}

bool Connection::pending() {
    if (m_buffer.contains("\r\n\r\n")) return true;
    pollfd fd{0, POLLIN, 0};
    return ::poll(&fd, 1, 0) > 0 && (fd.revents & POLLIN);
}

void Connection::send(const QJsonObject& message) {
    const QByteArray body = QJsonDocument(message).toJson(QJsonDocument::Compact);
    const QByteArray frame = "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
    for (qsizetype written = 0; written < frame.size();) {
        const ssize_t n = ::write(1, frame.constData() + written, size_t(frame.size() - written));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;
        written += n;
    }
}

void Connection::reply(const QJsonValue& id, const QJsonValue& result) {
    send({{QStringLiteral("jsonrpc"), QStringLiteral("2.0")},
          {QStringLiteral("id"), id},
          {QStringLiteral("result"), result}});
}

void Connection::error(const QJsonValue& id, int code, const QString& message) {
    send({{QStringLiteral("jsonrpc"), QStringLiteral("2.0")},
          {QStringLiteral("id"), id},
          {QStringLiteral("error"),
           QJsonObject{{QStringLiteral("code"), code}, {QStringLiteral("message"), message}}}});
}

void Connection::notify(const QString& method, const QJsonObject& params) {
    send({{QStringLiteral("jsonrpc"), QStringLiteral("2.0")},
          {QStringLiteral("method"), method},
          {QStringLiteral("params"), params}});
}

} // namespace lcdcfg

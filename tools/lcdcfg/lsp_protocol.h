#pragma once

// The language server's wire: JSON-RPC messages framed by a Content-Length
// header, read from standard input and written to standard output.

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>

namespace lcdcfg {

class Connection {
public:
    // Reads the next message; false at the end of the input or on a frame
    // that cannot be read.
    bool read(QJsonObject* message);
    // Whether another message is already waiting (checks wait for it).
    bool pending();

    void reply(const QJsonValue& id, const QJsonValue& result);
    void error(const QJsonValue& id, int code, const QString& message);
    void notify(const QString& method, const QJsonObject& params);

private:
    bool fill(); // reads what standard input has, blocking; false at its end
    void send(const QJsonObject& message);

    QByteArray m_buffer;
};

} // namespace lcdcfg

#ifndef ZELTESTNAMEDPIPE_H
#define ZELTESTNAMEDPIPE_H

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>

#include <chrono>
#include <thread>

#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZELTest {

/*!
    A named pipe (a FIFO) in a folder, which a thread of its own fills with
    given bytes once a reader opens it, in two writes with a pause between
    them, as a process at the other end of a pipe gives them. A reader sees
    a file of no size that it can read once, to its end.

    The writer waits a minute at most for a reader, and a reader that stops
    early only ends the writes, so that a test whose reader fails neither
    hangs nor dies of SIGPIPE.
*/
class NamedPipe
{
public:
    NamedPipe(const QString& folder, const QString& name, const QByteArray& bytes)
        : m_path(QDir(folder).filePath(name))
    {
        m_created = mkfifo(QFile::encodeName(m_path).constData(), 0600) == 0;
        if (m_created)
            m_writer = std::thread([this, bytes] { Write(bytes); });
    }
    ~NamedPipe()
    {
        if (m_writer.joinable())
            m_writer.join();
    }
    NamedPipe(const NamedPipe&) = delete;
    NamedPipe& operator=(const NamedPipe&) = delete;

    bool IsCreated() const { return m_created; }
    const QString& GetPath() const { return m_path; }

private:
    void Write(const QByteArray& bytes) const
    {
        // A write to a pipe whose reader has gone fails with EPIPE instead.
        sigset_t pipeSignal;
        sigemptyset(&pipeSignal);
        sigaddset(&pipeSignal, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);

        const int descriptor = OpenOnceReaderCame();
        if (descriptor < 0)
            return;
        const qsizetype half = bytes.size() / 2;
        if (WriteAll(descriptor, bytes.left(half))) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            WriteAll(descriptor, bytes.mid(half));
        }
        ::close(descriptor);
    }

    // Opening for writing without a reader fails at once (ENXIO) when it
    // does not block; once it succeeds, the writes block as usual.
    int OpenOnceReaderCame() const
    {
        const QByteArray path = QFile::encodeName(m_path);
        for (int attempt = 0; attempt < 6000; ++attempt) {
            const int descriptor = ::open(path.constData(), O_WRONLY | O_NONBLOCK);
            if (descriptor >= 0) {
                ::fcntl(descriptor, F_SETFL, 0);
                return descriptor;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return -1;
    }

    static bool WriteAll(int descriptor, const QByteArray& bytes)
    {
        qsizetype written = 0;
        while (written < bytes.size()) {
            const ssize_t n = ::write(descriptor, bytes.constData() + written, size_t(bytes.size() - written));
            if (n <= 0)
                return false;
            written += n;
        }
        return true;
    }

    const QString m_path;
    bool m_created = false;
    std::thread m_writer;
};

} // namespace ZELTest

#endif // ZELTESTNAMEDPIPE_H

#ifndef ZELKINNCSTREAM_P_H
#define ZELKINNCSTREAM_P_H

#include "zelkinematics_export.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringEncoder>

#include <cmath>
#include <functional>

class QIODevice;
class ZELKinPosition;

/*!
    Writes NC text into a device through a buffer of its own, so that a
    file of millions of lines is written in large blocks, is never held in
    memory whole, and no string is made for a number.

    Strings are written in UTF-8 and integers in decimal, as a QTextStream
    at its defaults writes them; doubles in the formats of ZELKinNCFormat:
    `out << value` with six significant digits, `out << Fixed{value,
    decimals}` with the decimals asked, both in plain decimal notation.
    Texts given as `const char*` and chars must be ASCII, as every literal
    of the NC dialect is.

    Every number of an NC file passes through here, and none that is not
    finite gets through: writing a NaN or an infinity throws
    ZELSysException "the <word> of line <n> is <nan|inf|-inf>, not a finite
    number", the number and the rest of its line unwritten. The word is the
    address the number follows: the name before its "=" ("C1=",
    "RetractFeedrate="), else the letters just before it (the "F" of
    "G1F"); a number without one is named by the text before it on its
    line: "the number after "<text>" on line <n> is ...".

    Whatever is left in the buffer goes to the device on Flush and when the
    stream is destroyed. Write errors are the device's to report (a
    QSaveFile then refuses to commit).
*/
class ZELKINEMATICS_EXPORT ZELKinNCStream
{
public:
    //! The size of the blocks handed to the device, in bytes.
    static constexpr qsizetype DefaultBlockSize = 256 * 1024;

    //! A double in plain decimal notation with `decimals` digits after the
    //! point, 0 to ZELKinNCFormat::MaximumDecimals, padded on the left with
    //! spaces to `width` characters when shorter.
    struct Fixed
    {
        double value;
        int decimals;
        int width = 0;
    };

    //! `device`, open for writing, must outlive the stream.
    explicit ZELKinNCStream(QIODevice* device, qsizetype blockSize = DefaultBlockSize);
    ~ZELKinNCStream();

    ZELKinNCStream& operator<<(const char* text);
    //! Text written before, such as a file's section copied whole.
    ZELKinNCStream& operator<<(QByteArrayView text);
    ZELKinNCStream& operator<<(char c);
    ZELKinNCStream& operator<<(const QString& text);
    ZELKinNCStream& operator<<(int value);
    ZELKinNCStream& operator<<(qint64 value);
    ZELKinNCStream& operator<<(quint64 value);
    ZELKinNCStream& operator<<(double value);
    ZELKinNCStream& operator<<(Fixed number);

    //! Hands what the buffer holds to the device.
    void Flush();

    //! The number of the line being written, from 1: the line ends written
    //! so far, plus one. Line ends are counted block by block as the
    //! buffer is handed on.
    qint64 GetLineNumber();

    //! Told the line number and the position of every motion line, by
    //! TracePosition.
    using PositionTrace = std::function<void(qint64 line, const ZELKinPosition* position)>;
    void SetPositionTrace(PositionTrace trace) { positionTrace = std::move(trace); }
    //! Tells the trace, if any, that the line being written moves to
    //! `position`; a null position is not told.
    void TracePosition(const ZELKinPosition* position)
    {
        if (positionTrace && position)
            positionTrace(GetLineNumber(), position);
    }

private:
    //! Room for `size` more bytes at the end of the buffer.
    char* Reserve(qsizetype size)
    {
        if (used + size > buffer.size())
            MakeRoom(size);
        return data + used;
    }
    //! The bytes up to `end` are written.
    void Commit(const char* end) { used = end - data; }
    //! Flushes the buffer, and lets it grow when `size` is more than a
    //! block.
    void MakeRoom(qsizetype size);
    template <typename Integer>
    ZELKinNCStream& WriteInteger(Integer value);
    //! Every number passes here before a byte of it is written.
    void CheckFinite(double value)
    {
        if (!std::isfinite(value))
            ThrowNonFinite(value);
    }
    [[noreturn]] void ThrowNonFinite(double value);
    //! Keeps the end of the buffer's last line, about to be handed on.
    void KeepHandedLineTail();
    //! The text of the line being written, as far as it is kept.
    QByteArray LineSoFar() const;

    QIODevice* const device;
    //! A block; only a text longer than that makes it grow.
    QByteArray buffer;
    //! The buffer's bytes, kept apart so that writing does not ask the
    //! byte array whether it is shared each time.
    char* data;
    //! The bytes of the buffer not yet handed to the device.
    qsizetype used = 0;
    //! Stateless, as every string is written whole.
    QStringEncoder toUtf8;
    //! Line ends in the bytes handed to the device, and in the buffer's
    //! first `counted` bytes.
    qint64 lineEnds = 0;
    qsizetype counted = 0;
    //! The end of the line being written that the last blocks handed on,
    //! so that a failure can name what the line holds before it.
    QByteArray handedLineTail;
    PositionTrace positionTrace;

    Q_DISABLE_COPY_MOVE(ZELKinNCStream)
};

#endif // ZELKINNCSTREAM_P_H

#ifndef ZELKINNCLINEREADER_H
#define ZELKINNCLINEREADER_H

#include "zelkinematics_export.h"

#include <QString>
#include <QtGlobal>

#include <memory>

class QFileDevice;
class ZELKinNCLineReaderPrivate;

/*!
    Reads NC text line by line: line ends "\n", one carriage return before a
    line end or the end of the text taken off with it; a byte order mark
    chooses the encoding (UTF-8, UTF-16 or UTF-32) and is skipped, UTF-8
    otherwise, and bytes that are not of the encoding read as U+FFFD.

    It refuses what no NC program holds before it costs memory or time
    without end: a line longer than MaximumLineLength characters, and, in a
    pipe or a device, a NUL character. A file has an end, and whatever it
    holds is read as text; a pipe or a device may never end, and one that
    gives binary bytes (/dev/urandom) is no NC. /dev/zero, which is all one
    line, ends at the bound of a line.

    The time taken grows with the length of the text and nothing else, on
    any allocator: the decoded text grows geometrically and is searched for
    a line end once.
*/
class ZELKINEMATICS_EXPORT ZELKinNCLineReader
{
public:
    //! 64 Mi characters: a posted line holds less than a hundred, and a
    //! line of ten million words still reads in about a second.
    static constexpr qsizetype MaximumLineLength = qsizetype(1) << 26;

    //! Reads `file`, open for reading and not owned; errors call it `name`.
    ZELKinNCLineReader(QFileDevice& file, const QString& name);
    virtual ~ZELKinNCLineReader();

    //! Reads the next line into `line`, without its line end; false at the
    //! end of the text. Throws ZELSysException "cannot read <name>:
    //! <reason>" for a read that fails, a line longer than the largest
    //! length and a NUL character from a pipe or a device.
    bool ReadLine(QString& line);

    //! The number of the line read last, from 1; 0 before the first.
    unsigned GetLineNumber() const;

protected:
    ZELKinNCLineReader(ZELKinNCLineReaderPrivate* d);

    std::unique_ptr<ZELKinNCLineReaderPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinNCLineReader)
    Q_DISABLE_COPY_MOVE(ZELKinNCLineReader)
};

#endif // ZELKINNCLINEREADER_H

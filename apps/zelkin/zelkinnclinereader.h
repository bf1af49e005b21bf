#ifndef ZELKINNCLINEREADER_H
#define ZELKINNCLINEREADER_H

#include <QString>
#include <QTextStream>

class QFileDevice;

/*!
    Reads NC text line by line as QTextStream reads it (line ends "\n" or
    "\r\n", a byte order mark skipped, bytes that are not UTF-8 read as
    U+FFFD), and refuses what no NC program holds before it costs memory or
    time without end: a line longer than MaximumLineLength characters, and,
    in a pipe or a device, a NUL character. A file has an end, and whatever
    it holds is read as text; a pipe or a device may never end, and one that
    gives binary bytes (/dev/urandom) is no NC. /dev/zero, which is all one
    line, ends at the bound of a line.

    Errors throw ZELSysException "cannot read <name>: <reason>".
*/
class ZELKinNCLineReader
{
public:
    //! 64 Mi characters: a posted line holds less than a hundred, and a
    //! line of ten million words still reads in about a second.
    static constexpr qsizetype MaximumLineLength = qsizetype(1) << 26;

    //! Reads `file`, open for reading and not owned; errors call it `name`.
    ZELKinNCLineReader(QFileDevice& file, const QString& name);

    //! Reads the next line into `line`, without its line end; false at the
    //! end of the text.
    bool ReadLine(QString& line);

    //! The number of the line read last, from 1; 0 before the first.
    unsigned GetLineNumber() const { return m_lineNumber; }

private:
    QFileDevice& m_file;
    const QString m_name;
    QTextStream m_text;
    unsigned m_lineNumber = 0;
    //! A pipe or a device, read no further than a NUL character.
    const bool m_isStream;
};

#endif // ZELKINNCLINEREADER_H

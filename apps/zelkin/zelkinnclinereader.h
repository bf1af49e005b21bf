#ifndef ZELKINNCLINEREADER_H
#define ZELKINNCLINEREADER_H

#include <QString>
#include <QStringDecoder>

class QFileDevice;

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
    //! Decodes the next block of the file onto the text; false at its end.
    bool ReadMoreText();
    //! Hands out the line from the read position up to `end` and moves the
    //! read position to `next`.
    void TakeLine(QString& line, qsizetype end, qsizetype next);
    void ThrowLineTooLong(unsigned lineNumber) const;

    QFileDevice& m_file;
    const QString m_name;
    QStringDecoder m_decoder;
    bool m_isEncodingChosen = false;
    //! Decoded text; what lies before m_start has been handed out, and
    //! m_text holds no line end between m_start and m_scanned.
    QString m_text;
    qsizetype m_start = 0;
    qsizetype m_scanned = 0;
    unsigned m_lineNumber = 0;
    //! A pipe or a device, read no further than a NUL character.
    const bool m_isStream;
};

#endif // ZELKINNCLINEREADER_H

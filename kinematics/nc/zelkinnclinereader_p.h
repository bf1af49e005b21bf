#ifndef ZELKINNCLINEREADER_P_H
#define ZELKINNCLINEREADER_P_H

#include "zelkinnclinereader.h"

#include <QString>
#include <QStringDecoder>

class ZELKinNCLineReaderPrivate
{
    Q_DECLARE_PUBLIC(ZELKinNCLineReader)

public:
    ZELKinNCLineReaderPrivate(ZELKinNCLineReader* q, QFileDevice& file, const QString& name);
    virtual ~ZELKinNCLineReaderPrivate() = default;

    //! Decodes the next block of the file onto the text; false at its end.
    bool ReadMoreText();
    //! Hands out the line from the read position up to `end` and moves the
    //! read position to `next`.
    void TakeLine(QString& line, qsizetype end, qsizetype next);
    [[noreturn]] void ThrowLineTooLong(unsigned lineNumber) const;

    ZELKinNCLineReader* const q_ptr;
    QFileDevice& file;
    const QString name;
    QStringDecoder decoder;
    bool isEncodingChosen = false;
    //! Decoded text; what lies before `start` has been handed out, and
    //! `text` holds no line end between `start` and `scanned`.
    QString text;
    qsizetype start = 0;
    qsizetype scanned = 0;
    unsigned lineNumber = 0;
    //! A pipe or a device, read no further than a NUL character.
    const bool isStream;
};

#endif // ZELKINNCLINEREADER_P_H

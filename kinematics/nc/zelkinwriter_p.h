#ifndef ZELKINWRITER_P_H
#define ZELKINWRITER_P_H

#include "zelkinwriter.h"

#include <QDateTime>
#include <QString>

class ZELKinWriterPrivate
{
    Q_DECLARE_PUBLIC(ZELKinWriter)

public:
    ZELKinWriterPrivate(ZELKinWriter* q, ZELKinProgram* program)
        : q_ptr(q)
        , program(program)
    {
    }
    virtual ~ZELKinWriterPrivate() = default;

    ZELKinWriter* const q_ptr;
    //! The program written; not owned.
    ZELKinProgram* const program;
    QString plyToProcess;
    //! The time the files print; the current time while null.
    QDateTime currentDateTime;
    ZELKinWriter::LineTrace lineTrace;
    ZELKinWriter::FileErrorMode fileErrorMode = ZELKinWriter::FileErrorEndsProcess;
    bool chosenPlyMissing = false;
};

#endif // ZELKINWRITER_P_H

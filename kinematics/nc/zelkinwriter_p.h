#ifndef ZELKINWRITER_P_H
#define ZELKINWRITER_P_H

#include "zelkinwriter.h"

#include <QDateTime>
#include <QString>

#include <memory>

class ZELKinAFPGCodeWriter;

class ZELKinWriterPrivate
{
    Q_DECLARE_PUBLIC(ZELKinWriter)

public:
    ZELKinWriterPrivate(ZELKinWriter* q, ZELKinProgram* program)
        : q_ptr(q)
        , program(program)
    {
    }
    virtual ~ZELKinWriterPrivate();

    ZELKinWriter* const q_ptr;
    //! The program written; not owned.
    ZELKinProgram* const program;
    QString plyToProcess;
    //! The time the files print; the current time while null.
    QDateTime currentDateTime;
    ZELKinWriter::LineTrace lineTrace;
    ZELKinWriter::FileErrorMode fileErrorMode = ZELKinWriter::FileErrorEndsProcess;
    bool chosenPlyMissing = false;
    //! The dialect writer between Begin and Finish.
    std::unique_ptr<ZELKinAFPGCodeWriter> streaming;

    //! The dialect writer for `path` with the writer's settings, after
    //! `name` is checked as the base of every file name.
    std::unique_ptr<ZELKinAFPGCodeWriter> CreateDialectWriter(const QString& path, const QString& options,
                                                              const QString& name) const;
};

#endif // ZELKINWRITER_P_H

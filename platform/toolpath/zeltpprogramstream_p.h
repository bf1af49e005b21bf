#ifndef ZELTPPROGRAMSTREAM_P_H
#define ZELTPPROGRAMSTREAM_P_H

#include "zeltpprogramstream.h"

#include <QDateTime>

#include <string>
#include <vector>

class ZELTPProgramStreamPrivate
{
    Q_DECLARE_PUBLIC(ZELTPProgramStream)

public:
    explicit ZELTPProgramStreamPrivate(ZELTPProgramStream* q)
        : q_ptr(q)
    {
    }
    virtual ~ZELTPProgramStreamPrivate() = default;

    //! Where one entry of the procedures array stands: bytes [begin, end).
    struct Entry
    {
        qint64 begin = 0;
        qint64 end = 0;
    };

    //! Reads the program's own fields from `head`: the document with each
    //! procedure entry replaced by "{}".
    void ReadHead(std::string&& head);
    //! Throws the reader's message for the first syntax error of the whole
    //! file; called once a part of it failed to parse.
    [[noreturn]] void ThrowSyntaxError() const;
    //! Throws "the file changed while it was read" when it has.
    void RequireUnchanged() const;

    ZELTPProgramStream* const q_ptr;
    QString fileName;
    qint64 fileBytes = 0;
    QDateTime modified;
    QString name;
    QString revision;
    std::vector<Entry> entries;
};

#endif // ZELTPPROGRAMSTREAM_P_H

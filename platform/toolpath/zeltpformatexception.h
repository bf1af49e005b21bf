#ifndef ZELTPFORMATEXCEPTION_H
#define ZELTPFORMATEXCEPTION_H

#include "zeltoolpath_export.h"

#include <zelsysexception.h>

/*!
    Thrown by ZELTPProgramReader for a toolpath document that cannot be read:
    a file that does not open, text that is not JSON, or JSON that breaks a
    rule of the toolpath format.

    It names the document (its file name, or the name the caller gave the
    data), where in the document the problem is, and the problem itself. The
    message reads "<source>: <location>: <problem>", for example
    "part.json: $.program.procedures[0].addingFeedrate: expected a number
    from 1 to 200000, found 0"; without a location, "<source>: <problem>". A
    location is a JSON path from the root "$" (".key" for a member, "[i]"
    for an array entry).
*/
class ZELTOOLPATH_EXPORT ZELTPFormatException : public ZELSysException
{
public:
    ZELTPFormatException(const QString& sourceName, const QString& location, const QString& problem);
    ~ZELTPFormatException() override;

    ZELTPFormatException(const ZELTPFormatException&) = default;
    ZELTPFormatException& operator=(const ZELTPFormatException&) = default;

    //! The file name or the name given with the data.
    QString GetSourceName() const;
    //! The JSON path of the value at fault; empty when the problem is not in
    //! the document's values (a file that does not open).
    QString GetLocation() const;
    //! What was wrong, without source name and location.
    QString GetProblem() const;

private:
    QString m_sourceName;
    QString m_location;
    QString m_problem;
};

#endif // ZELTPFORMATEXCEPTION_H

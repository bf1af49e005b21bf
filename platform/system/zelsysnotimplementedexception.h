#ifndef ZELSYSNOTIMPLEMENTEDEXCEPTION_H
#define ZELSYSNOTIMPLEMENTEDEXCEPTION_H

#include "zelsysexception.h"

/*!
    Thrown by an operation that a class does not support.

    Built with the operation's name, the message reads
    "'<operation>' is not implemented"; built without one, "not implemented".
*/
class ZELSYSTEM_EXPORT ZELSysNotImplementedException : public ZELSysException
{
public:
    explicit ZELSysNotImplementedException(const QString& operation = QString());
    ~ZELSysNotImplementedException() override;

    ZELSysNotImplementedException(const ZELSysNotImplementedException&) = default;
    ZELSysNotImplementedException& operator=(const ZELSysNotImplementedException&) = default;

    //! The name of the unsupported operation; empty when none was given.
    QString GetOperation() const;

private:
    QString m_operation;
};

#endif // ZELSYSNOTIMPLEMENTEDEXCEPTION_H

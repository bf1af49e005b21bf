#ifndef ZELSYSEXCEPTION_H
#define ZELSYSEXCEPTION_H

#include "zelsystem_export.h"

#include <QString>

#include <stdexcept>

/*!
    The root of every exception the ZELKinematics libraries throw.

    It is a std::runtime_error, so a host can catch everything the libraries
    throw with `catch (const std::exception&)`; what() returns the message as
    UTF-8. The class is exported so that its type information is shared across
    the library edge and a host catches it by its own name.
*/
class ZELSYSTEM_EXPORT ZELSysException : public std::runtime_error
{
public:
    explicit ZELSysException(const QString& message);
    ~ZELSysException() override;

    ZELSysException(const ZELSysException&) = default;
    ZELSysException& operator=(const ZELSysException&) = default;

    //! The message as it was given (what() holds the same text as UTF-8).
    QString GetMessage() const;
};

#endif // ZELSYSEXCEPTION_H

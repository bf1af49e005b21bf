#include "zelsysexception.h"

ZELSysException::ZELSysException(const QString& message)
    : std::runtime_error(message.toStdString())
{
}

// Out of line, so that the vtable and type information live in this library.
ZELSysException::~ZELSysException() = default;

QString ZELSysException::GetMessage() const
{
    return QString::fromUtf8(what());
}

#include "zelsysnotimplementedexception.h"

namespace {

QString NotImplementedMessage(const QString& operation)
{
    if (operation.isEmpty())
        return QStringLiteral("not implemented");
    return QStringLiteral("'%1' is not implemented").arg(operation);
}

} // namespace

ZELSysNotImplementedException::ZELSysNotImplementedException(const QString& operation)
    : ZELSysException(NotImplementedMessage(operation))
    , m_operation(operation)
{
}

ZELSysNotImplementedException::~ZELSysNotImplementedException() = default;

QString ZELSysNotImplementedException::GetOperation() const
{
    return m_operation;
}

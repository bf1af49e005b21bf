#include "zeltpmachineconfiguration.h"

#include <QDataStream>

QDataStream& operator<<(QDataStream& stream, const ZELTPMachineConfiguration& configuration)
{
    return stream << configuration.GetTool() << configuration.GetHead();
}

QDataStream& operator>>(QDataStream& stream, ZELTPMachineConfiguration& configuration)
{
    ZELTPRoller tool;
    ZELTPAFPHead head;
    stream >> tool >> head;
    configuration = ZELTPMachineConfiguration(tool, head);
    return stream;
}

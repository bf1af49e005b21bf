#include "zeltpmachineconfiguration.h"

#include <zelcomptowmask.h>

#include <QDataStream>

#include <algorithm>
#include <cmath>

namespace {

// Keeps a roller exactly n tows wide from counting n - 1 tows by rounding.
constexpr double RollerWidthAllowance = 0.001;

} // namespace

int ZELTPMachineConfiguration::GetRollerTows() const
{
    const double tows = std::floor((m_tool.GetWidth() + RollerWidthAllowance) / m_head.GetTowWidth());
    if (!std::isfinite(tows))
        return 0;
    return int(std::clamp(tows, 0.0, double(ZELCompTowMask::MaximumTows)));
}

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

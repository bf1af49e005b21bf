#include "zelkintoolpathpart.h"

#include "zelkintoolpathcylindersection.h"
#include "zelkintoolpathdome.h"
#include "zelkintoolpathflatpanel.h"

std::unique_ptr<ZELKinToolpathPart> ZELKinToolpathPart::Create(const QString& kind)
{
    if (kind == QLatin1String("flat"))
        return std::make_unique<ZELKinToolpathFlatPanel>();
    if (kind == QLatin1String("cylinder"))
        return std::make_unique<ZELKinToolpathCylinderSection>();
    if (kind == QLatin1String("dome"))
        return std::make_unique<ZELKinToolpathDome>();
    return nullptr;
}

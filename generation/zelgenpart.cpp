#include "zelgenpart.h"

#include "zelgencylindersection.h"
#include "zelgendome.h"
#include "zelgenflatpanel.h"

std::unique_ptr<ZELGenPart> ZELGenPart::Create(const QString& kind)
{
    if (kind == QLatin1String("flat"))
        return std::make_unique<ZELGenFlatPanel>();
    if (kind == QLatin1String("cylinder"))
        return std::make_unique<ZELGenCylinderSection>();
    if (kind == QLatin1String("dome"))
        return std::make_unique<ZELGenDome>();
    return nullptr;
}

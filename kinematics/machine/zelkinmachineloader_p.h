#ifndef ZELKINMACHINELOADER_P_H
#define ZELKINMACHINELOADER_P_H

#include "zelkinmachineloader.h"

class ZELKinMachineLoaderPrivate
{
    Q_DECLARE_PUBLIC(ZELKinMachineLoader)

public:
    ZELKinMachineLoaderPrivate(ZELKinMachineLoader* q, ZELGeoContainer* container)
        : q_ptr(q)
        , container(container)
    {
    }
    virtual ~ZELKinMachineLoaderPrivate() = default;

    ZELKinMachineLoader* const q_ptr;
    ZELGeoContainer* const container;
};

#endif // ZELKINMACHINELOADER_P_H

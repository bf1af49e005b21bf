#ifndef ZELTPMACHINECONFIGURATION_H
#define ZELTPMACHINECONFIGURATION_H

#include "zeltoolpath_export.h"
#include "zeltpafphead.h"
#include "zeltproller.h"

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    The tooling a course is laid with: the roller (the tool) mounted on a
    fibre placement head. A tool change link goes from one configuration to
    the next. Nothing declared here throws.
*/
class ZELTPMachineConfiguration
{
public:
    //! An unnamed roller on an unnamed head, all widths 0.
    ZELTPMachineConfiguration() = default;
    ZELTPMachineConfiguration(const ZELTPRoller& tool, const ZELTPAFPHead& head)
        : m_tool(tool)
        , m_head(head)
    {
    }

    ZELTPRoller GetTool() const { return m_tool; }
    ZELTPAFPHead GetHead() const { return m_head; }

private:
    ZELTPRoller m_tool;
    ZELTPAFPHead m_head;
};

//! Writes the tool, then the head, each in its own stream form.
ZELTOOLPATH_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELTPMachineConfiguration& configuration);
//! Reads what operator<< wrote.
ZELTOOLPATH_EXPORT QDataStream& operator>>(QDataStream& stream, ZELTPMachineConfiguration& configuration);

#endif // ZELTPMACHINECONFIGURATION_H

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

    //! How many whole tows of the head lie side by side under the roller:
    //! its width over the tow width, where a roller within 0.001 mm of n
    //! tows counts n. 0 for a head without a tow width; never more than a
    //! tow mask holds (ZELCompTowMask::MaximumTows).
    ZELTOOLPATH_EXPORT int GetRollerTows() const;

private:
    ZELTPRoller m_tool;
    ZELTPAFPHead m_head;
};

//! Writes the tool, then the head, each in its own stream form.
ZELTOOLPATH_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELTPMachineConfiguration& configuration);
//! Reads what operator<< wrote.
ZELTOOLPATH_EXPORT QDataStream& operator>>(QDataStream& stream, ZELTPMachineConfiguration& configuration);

#endif // ZELTPMACHINECONFIGURATION_H

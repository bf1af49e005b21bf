#ifndef ZELTPROLLER_H
#define ZELTPROLLER_H

#include "zeltoolpath_export.h"

#include <QString>

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    The compaction roller a course is laid with: the tool of a fibre
    placement head. Its width (mm) says how many tows it presses at once.
    Nothing declared here throws.
*/
class ZELTPRoller
{
public:
    //! An unnamed roller of width 0.
    ZELTPRoller() = default;
    ZELTPRoller(const QString& name, double width)
        : m_name(name)
        , m_width(width)
    {
    }

    QString GetName() const { return m_name; }
    //! The width across the direction of travel (mm).
    double GetWidth() const { return m_width; }

private:
    QString m_name;
    double m_width = 0.0;
};

//! Writes the name (QString), then the width (double).
ZELTOOLPATH_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELTPRoller& roller);
//! Reads what operator<< wrote; past the end of the data, QDataStream's
//! empty string and zero.
ZELTOOLPATH_EXPORT QDataStream& operator>>(QDataStream& stream, ZELTPRoller& roller);

#endif // ZELTPROLLER_H

#ifndef ZELTPAFPHEAD_H
#define ZELTPAFPHEAD_H

#include "zeltoolpath_export.h"

#include <QString>

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    The fibre placement head a course is laid with, as far as the toolpath
    knows it: its name and the width of one of its tows (mm). Nothing
    declared here throws.
*/
class ZELTPAFPHead
{
public:
    //! An unnamed head with tows of width 0.
    ZELTPAFPHead() = default;
    ZELTPAFPHead(const QString& name, double towWidth)
        : m_name(name)
        , m_towWidth(towWidth)
    {
    }

    QString GetName() const { return m_name; }
    //! The width of one tow (mm).
    double GetTowWidth() const { return m_towWidth; }

private:
    QString m_name;
    double m_towWidth = 0.0;
};

//! Writes the name (QString), then the tow width (double).
ZELTOOLPATH_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELTPAFPHead& head);
//! Reads what operator<< wrote; past the end of the data, QDataStream's
//! empty string and zero.
ZELTOOLPATH_EXPORT QDataStream& operator>>(QDataStream& stream, ZELTPAFPHead& head);

#endif // ZELTPAFPHEAD_H

#ifndef ZELTPMATERIALDESCRIPTION_H
#define ZELTPMATERIALDESCRIPTION_H

#include "zeltoolpath_export.h"

#include <QString>

QT_FORWARD_DECLARE_CLASS(QDataStream)

/*!
    The material a roll layup procedure lays: the identifier that material
    lists and NC programs quote, and a name for people. Nothing declared here
    throws.
*/
class ZELTPMaterialDescription
{
public:
    //! Empty identifier and name.
    ZELTPMaterialDescription() = default;
    ZELTPMaterialDescription(const QString& id, const QString& name)
        : m_id(id)
        , m_name(name)
    {
    }

    QString GetId() const { return m_id; }
    QString GetName() const { return m_name; }

private:
    QString m_id;
    QString m_name;
};

//! Writes the identifier, then the name (QString each).
ZELTOOLPATH_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELTPMaterialDescription& material);
//! Reads what operator<< wrote; past the end of the data, empty strings.
ZELTOOLPATH_EXPORT QDataStream& operator>>(QDataStream& stream, ZELTPMaterialDescription& material);

#endif // ZELTPMATERIALDESCRIPTION_H

#ifndef ZELKINPLYDESCRIPTION_H
#define ZELKINPLYDESCRIPTION_H

#include "zelkinematics_export.h"

#include <zelcompstrategy.h>

#include <QExplicitlySharedDataPointer>
#include <QString>

class QDataStream;
class ZELKinPlyDescriptionPrivate;

/*!
    One ply definition of a roll layup procedure: the ply's name, its
    material, its angle, the propagation method of its strategy and its
    area. The courses of a procedure belong to its plies, which the NC
    writer names and numbers.

    A ply description is a value type with implicit sharing: copies share
    one body until one of them is changed, and every setter first gives the
    description a body of its own. Nothing declared here throws.

    Stream form: name (QString), material (QString), angle (double), method
    (qint32), area (double).
*/
class ZELKINEMATICS_EXPORT ZELKinPlyDescription
{
public:
    //! No name (so not valid), no material, NaN angle and area, the first
    //! propagation method.
    ZELKinPlyDescription();
    //! Shares the body of `other`.
    ZELKinPlyDescription(const ZELKinPlyDescription& other);
    ZELKinPlyDescription& operator=(const ZELKinPlyDescription& other);
    ~ZELKinPlyDescription();

    //! True exactly when the name is not empty.
    bool IsValid() const;

    //! The name that ZELKinRollLayupProcedure::GetPlyIndex looks for.
    QString GetName() const;
    void SetName(const QString& name);
    QString GetMaterial() const;
    void SetMaterial(const QString& material);
    //! The ply angle (rad); NaN until set.
    double GetAngle() const;
    void SetAngle(double angle);
    ZELCompStrategy::PropagationMode GetMethod() const;
    void SetMethod(ZELCompStrategy::PropagationMode method);
    //! The ply area (mm²); NaN until set.
    double GetArea() const;
    void SetArea(double area);

private:
    friend class ZELKinTestAccess;

    QExplicitlySharedDataPointer<ZELKinPlyDescriptionPrivate> d_ptr;
    Q_DECLARE_PRIVATE(ZELKinPlyDescription)
};

Q_DECLARE_TYPEINFO(ZELKinPlyDescription, Q_RELOCATABLE_TYPE);

ZELKINEMATICS_EXPORT QDataStream& operator<<(QDataStream& stream, const ZELKinPlyDescription& ply);
//! Reads the stream form; the method's 32-bit value is narrowed to the
//! one-byte enumeration as it stands.
ZELKINEMATICS_EXPORT QDataStream& operator>>(QDataStream& stream, ZELKinPlyDescription& ply);

#endif // ZELKINPLYDESCRIPTION_H

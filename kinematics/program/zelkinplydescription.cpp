#include "zelkinplydescription.h"
#include "zelkinplydescription_p.h"

#include <QDataStream>

ZELKinPlyDescription::ZELKinPlyDescription()
    : d_ptr(new ZELKinPlyDescriptionPrivate)
{
}

ZELKinPlyDescription::ZELKinPlyDescription(const ZELKinPlyDescription& other) = default;

ZELKinPlyDescription& ZELKinPlyDescription::operator=(const ZELKinPlyDescription& other) = default;

ZELKinPlyDescription::~ZELKinPlyDescription() = default;

bool ZELKinPlyDescription::IsValid() const
{
    Q_D(const ZELKinPlyDescription);
    return !d->name.isEmpty();
}

QString ZELKinPlyDescription::GetName() const
{
    Q_D(const ZELKinPlyDescription);
    return d->name;
}

void ZELKinPlyDescription::SetName(const QString& name)
{
    d_ptr.detach();
    Q_D(ZELKinPlyDescription);
    d->name = name;
}

QString ZELKinPlyDescription::GetMaterial() const
{
    Q_D(const ZELKinPlyDescription);
    return d->material;
}

void ZELKinPlyDescription::SetMaterial(const QString& material)
{
    d_ptr.detach();
    Q_D(ZELKinPlyDescription);
    d->material = material;
}

double ZELKinPlyDescription::GetAngle() const
{
    Q_D(const ZELKinPlyDescription);
    return d->angle;
}

void ZELKinPlyDescription::SetAngle(double angle)
{
    d_ptr.detach();
    Q_D(ZELKinPlyDescription);
    d->angle = angle;
}

ZELCompStrategy::PropagationMode ZELKinPlyDescription::GetMethod() const
{
    Q_D(const ZELKinPlyDescription);
    return d->method;
}

void ZELKinPlyDescription::SetMethod(ZELCompStrategy::PropagationMode method)
{
    d_ptr.detach();
    Q_D(ZELKinPlyDescription);
    d->method = method;
}

double ZELKinPlyDescription::GetArea() const
{
    Q_D(const ZELKinPlyDescription);
    return d->area;
}

void ZELKinPlyDescription::SetArea(double area)
{
    d_ptr.detach();
    Q_D(ZELKinPlyDescription);
    d->area = area;
}

QDataStream& operator<<(QDataStream& stream, const ZELKinPlyDescription& ply)
{
    return stream << ply.GetName() << ply.GetMaterial() << ply.GetAngle() << qint32(ply.GetMethod())
                  << ply.GetArea();
}

QDataStream& operator>>(QDataStream& stream, ZELKinPlyDescription& ply)
{
    QString name;
    QString material;
    double angle = 0.0;
    qint32 method = 0;
    double area = 0.0;
    stream >> name >> material >> angle >> method >> area;
    ply.SetName(name);
    ply.SetMaterial(material);
    ply.SetAngle(angle);
    ply.SetMethod(ZELCompStrategy::PropagationMode(quint8(method)));
    ply.SetArea(area);
    return stream;
}

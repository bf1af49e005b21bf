#ifndef ZELTPTESTSUPPORT_H
#define ZELTPTESTSUPPORT_H

#include <zelgeocontainer.h>
#include <zelgeogeometry.h>
#include <zelgeostream.h>
#include <zelmathaxis.h>
#include <zelmathplane.h>

#include <zeltestsupport.h>

#include <QBuffer>
#include <QByteArray>
#include <QList>

#include <vector>

namespace ZELTPTest {

//! Saves the whole container to bytes and loads them into `target`.
inline QList<ZELGeoGeometry*> CopyContainer(const ZELGeoContainer& source, ZELGeoContainer& target)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    source.Save(&buffer);
    buffer.seek(0);
    return target.Load(&buffer);
}

//! The bytes that `write` puts into a record stream, to set beside what a
//! geometry's Save wrote.
template <typename Write>
QByteArray Record(Write write)
{
    QByteArray record;
    ZELGeoStream stream(&record, nullptr);
    write(stream);
    return record;
}

//! The geometries of class T among `geometries`, in order.
template <typename T>
QList<T*> AllOf(const QList<ZELGeoGeometry*>& geometries)
{
    QList<T*> found;
    for (ZELGeoGeometry* geometry : geometries) {
        if (T* object = qobject_cast<T*>(geometry))
            found.append(object);
    }
    return found;
}

inline std::vector<double> Components(const ZELMathPoint& point)
{
    return {point.GetX(), point.GetY(), point.GetZ()};
}

inline std::vector<double> Components(const ZELMathVector& vector)
{
    return {vector.GetX(), vector.GetY(), vector.GetZ()};
}

inline std::vector<double> Components(const ZELMathAxis& frame)
{
    std::vector<double> all = Components(frame.GetOrigin());
    for (const ZELMathVector& direction : {frame.GetUDirection(), frame.GetVDirection(), frame.GetWDirection()}) {
        const std::vector<double> more = Components(direction);
        all.insert(all.end(), more.begin(), more.end());
    }
    return all;
}

inline std::vector<double> Components(const ZELMathPlane& plane)
{
    std::vector<double> all = Components(plane.GetOrigin());
    for (const ZELMathVector& direction : {plane.GetNormal(), plane.GetXDirection(), plane.GetYDirection()}) {
        const std::vector<double> more = Components(direction);
        all.insert(all.end(), more.begin(), more.end());
    }
    return all;
}

//! Every component of two points, frames or planes equal to the last bit,
//! naming the first that is not.
template <typename Value>
::testing::AssertionResult Same(const Value& expected, const Value& actual)
{
    const std::vector<double> want = Components(expected);
    const std::vector<double> got = Components(actual);
    for (std::size_t i = 0; i < want.size(); ++i) {
        ::testing::AssertionResult same = ZELTest::SameDouble(want[i], got[i], ZELTest::kExact);
        if (!same)
            return same << " at component " << i;
    }
    return ::testing::AssertionSuccess();
}

//! Two lists of doubles of one length with every entry equal to the last bit.
inline ::testing::AssertionResult SameDoubles(const QList<double>& expected, const QList<double>& actual)
{
    if (expected.size() != actual.size())
        return ::testing::AssertionFailure() << expected.size() << " entries expected, got " << actual.size();
    for (qsizetype i = 0; i < expected.size(); ++i) {
        ::testing::AssertionResult same = ZELTest::SameDouble(expected.at(i), actual.at(i), ZELTest::kExact);
        if (!same)
            return same << " at entry " << i;
    }
    return ::testing::AssertionSuccess();
}

//! A tilted frame whose directions carry the rounding of their normalisation.
inline ZELMathAxis TiltedFrame()
{
    return ZELMathAxis(ZELMathPoint(1250.5, -37.25, 812.125), ZELMathVector(1.0, 1.0, 0.0),
                       ZELMathVector(-1.0, 1.0, 1.0), ZELMathVector(1.0, -1.0, 2.0));
}

//! A frame at `origin` with the world's directions.
inline ZELMathAxis FrameAt(double x, double y, double z)
{
    return ZELMathAxis(ZELMathPoint(x, y, z), ZELMathVector(1.0, 0.0, 0.0), ZELMathVector(0.0, 1.0, 0.0),
                       ZELMathVector(0.0, 0.0, 1.0));
}

//! A plane whose normal and basis are not the world's.
inline ZELMathPlane TiltedPlane()
{
    return ZELMathPlane(ZELMathPoint(0.0, 0.0, 350.0), ZELMathVector(0.0, 1.0, 3.0), ZELMathVector(1.0, 0.0, 0.0));
}

} // namespace ZELTPTest

#endif // ZELTPTESTSUPPORT_H

#ifndef ZELMATHTESTSUPPORT_H
#define ZELMATHTESTSUPPORT_H

#include "zeltestsupport.h"

#include "zelmathaxis.h"
#include "zelmathplane.h"
#include "zelmathpoint.h"
#include "zelmathvector.h"
#include "zelmathvector2d.h"

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

#include <cstdint>
#include <cstring>
#include <vector>

namespace ZELMathTest {

//! The doubles of a value in the order its stream operator writes them.
inline std::vector<double> Components(const std::vector<double>& doubles)
{
    return doubles;
}

inline std::vector<double> Components(const ZELMathVector& vector)
{
    return {vector.GetX(), vector.GetY(), vector.GetZ()};
}

inline std::vector<double> Components(const ZELMathPoint& point)
{
    return {point.GetX(), point.GetY(), point.GetZ()};
}

inline std::vector<double> Components(const ZELMathVector2D& vector)
{
    return {vector.GetX(), vector.GetY()};
}

inline std::vector<double> Components(const ZELMathPlane& plane)
{
    std::vector<double> components = Components(plane.GetOrigin());
    for (const ZELMathVector& direction :
         {plane.GetNormal(), plane.GetXDirection(), plane.GetYDirection()}) {
        const std::vector<double> more = Components(direction);
        components.insert(components.end(), more.begin(), more.end());
    }
    return components;
}

inline std::vector<double> Components(const ZELMathAxis& frame)
{
    std::vector<double> components = Components(frame.GetOrigin());
    for (const ZELMathVector& direction :
         {frame.GetUDirection(), frame.GetVDirection(), frame.GetWDirection()}) {
        const std::vector<double> more = Components(direction);
        components.insert(components.end(), more.begin(), more.end());
    }
    return components;
}

//! Every component within tolerance, naming the first that is not.
template <typename Value>
::testing::AssertionResult SameValue(const Value& expected, const Value& actual, double tolerance)
{
    const std::vector<double> want = Components(expected);
    const std::vector<double> got = Components(actual);
    if (want.size() != got.size())
        return ::testing::AssertionFailure() << want.size() << " components expected, got " << got.size();
    for (std::size_t i = 0; i < want.size(); ++i) {
        const ::testing::AssertionResult same = ZELTest::SameDouble(want[i], got[i], tolerance);
        if (!same)
            return ::testing::AssertionFailure() << "component " << i << ": " << same.message();
    }
    return ::testing::AssertionSuccess();
}

inline std::uint64_t BitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

//! Every component with the very same bits, so that signed zeros and NaNs count.
template <typename Value>
::testing::AssertionResult SameBits(const Value& expected, const Value& actual)
{
    const std::vector<double> want = Components(expected);
    const std::vector<double> got = Components(actual);
    if (want.size() != got.size())
        return ::testing::AssertionFailure() << want.size() << " components expected, got " << got.size();
    for (std::size_t i = 0; i < want.size(); ++i) {
        if (BitsOf(want[i]) != BitsOf(got[i]))
            return ::testing::AssertionFailure() << "component " << i << ": expected " << want[i]
                                                 << ", got " << got[i];
    }
    return ::testing::AssertionSuccess();
}

//! The doubles a stream holds, in order, read as doubles.
inline std::vector<double> DoublesIn(const QByteArray& bytes)
{
    QDataStream stream(bytes);
    std::vector<double> doubles;
    while (!stream.atEnd()) {
        double value = 0.0;
        stream >> value;
        doubles.push_back(value);
    }
    return doubles;
}

template <typename Value>
QByteArray Written(const Value& value)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << value;
    return bytes;
}

//! Reads a value from bytes into a default-made one; the stream's status tells
//! whether the bytes ran out.
template <typename Value>
Value ReadBack(const QByteArray& bytes, QDataStream::Status& status)
{
    QDataStream stream(bytes);
    Value value;
    stream >> value;
    status = stream.status();
    return value;
}

} // namespace ZELMathTest

#endif // ZELMATHTESTSUPPORT_H

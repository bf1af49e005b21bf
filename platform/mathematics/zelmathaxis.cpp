#include "zelmathaxis.h"

#include "zelsysoutofboundsexception.h"

#include <QDataStream>

#include <cmath>

namespace {

constexpr int kFirstNumber = 1;
constexpr int kLastNumber = 3;

// Which of u (0), v (1), w (2) make up plane k: axis k, the normal of plane
// k, is also the axis a tilt k turns about, and the basis pair is what turns.
struct PlaneDirections
{
    std::size_t normal;
    std::size_t first;
    std::size_t second;
};

PlaneDirections DirectionsOfPlane(int number)
{
    if (number < kFirstNumber || number > kLastNumber)
        throw ZELSysOutOfBoundsException(number, kFirstNumber, kLastNumber, true, true);
    const auto first = static_cast<std::size_t>(number - 1);
    return {(first + 2) % 3, first, (first + 1) % 3};
}

ZELMathVector AsVector(const ZELMathPoint& point)
{
    return ZELMathVector(point.GetX(), point.GetY(), point.GetZ());
}

ZELMathPoint AsPoint(const ZELMathVector& vector)
{
    return ZELMathPoint(vector.GetX(), vector.GetY(), vector.GetZ());
}

} // namespace

ZELMathAxis::ZELMathAxis(const ZELMathPoint& origin, const ZELMathVector& u, const ZELMathVector& v,
                         const ZELMathVector& w)
    : m_origin(origin)
{
    SetDirections(u, v, w);
}

void ZELMathAxis::SetDirections(const ZELMathVector& u, const ZELMathVector& v, const ZELMathVector& w)
{
    m_directions = {u.GetNormalized(), v.GetNormalized(), w.GetNormalized()};
}

ZELMathAxis ZELMathAxis::operator*(const ZELMathAxis& local) const
{
    ZELMathAxis world;
    world.m_origin = *this * local.m_origin;
    for (std::size_t i = 0; i < m_directions.size(); ++i)
        world.m_directions[i] = *this * local.m_directions[i];
    return world;
}

ZELMathPoint ZELMathAxis::operator*(const ZELMathPoint& local) const
{
    return m_origin + *this * AsVector(local);
}

ZELMathVector ZELMathAxis::operator*(const ZELMathVector& local) const
{
    return m_directions[kU] * local.GetX() + m_directions[kV] * local.GetY()
        + m_directions[kW] * local.GetZ();
}

ZELMathAxis ZELMathAxis::operator/(const ZELMathAxis& parent) const
{
    ZELMathAxis local;
    local.m_origin = m_origin / parent;
    for (std::size_t i = 0; i < m_directions.size(); ++i)
        local.m_directions[i] = m_directions[i] / parent;
    return local;
}

bool ZELMathAxis::IsEqual(const ZELMathAxis& other, double tolerance) const
{
    for (std::size_t i = 0; i < m_directions.size(); ++i) {
        if (!m_directions[i].IsEqual(other.m_directions[i], tolerance))
            return false;
    }
    return m_origin.IsEqual(other.m_origin, tolerance);
}

ZELMathPlane ZELMathAxis::GetPlane(const ZELMathAxis& frame, int planeNumber)
{
    const PlaneDirections plane = DirectionsOfPlane(planeNumber);
    return ZELMathPlane(frame.m_origin, frame.m_directions[plane.normal],
                        frame.m_directions[plane.first], frame.m_directions[plane.second]);
}

void ZELMathAxis::Tilt(ZELMathAxis& frame, int axisNumber, double angle)
{
    // Turning about axis k turns the basis of plane k within that plane; the
    // rotation is written on the two directions themselves rather than as a
    // matrix product, so that the untouched direction and the origin keep their bits.
    const PlaneDirections plane = DirectionsOfPlane(axisNumber);
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    const ZELMathVector first = frame.m_directions[plane.first];
    const ZELMathVector second = frame.m_directions[plane.second];
    frame.m_directions[plane.first] = first * cosine + second * sine;
    frame.m_directions[plane.second] = second * cosine - first * sine;
}

ZELMathPoint operator/(const ZELMathPoint& world, const ZELMathAxis& frame)
{
    return AsPoint((world - frame.GetOrigin()) / frame);
}

ZELMathVector operator/(const ZELMathVector& world, const ZELMathAxis& frame)
{
    return ZELMathVector(world.Dot(frame.GetUDirection()), world.Dot(frame.GetVDirection()),
                         world.Dot(frame.GetWDirection()));
}

QDataStream& operator<<(QDataStream& stream, const ZELMathAxis& frame)
{
    return stream << frame.GetOrigin() << frame.GetUDirection() << frame.GetVDirection()
                  << frame.GetWDirection();
}

QDataStream& operator>>(QDataStream& stream, ZELMathAxis& frame)
{
    return stream >> frame.m_origin >> frame.m_directions[ZELMathAxis::kU]
                  >> frame.m_directions[ZELMathAxis::kV] >> frame.m_directions[ZELMathAxis::kW];
}

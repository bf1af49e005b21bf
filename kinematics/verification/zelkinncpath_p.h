#ifndef ZELKINNCPATH_P_H
#define ZELKINNCPATH_P_H

#include <zelmathpoint.h>

#include <QList>

#include <limits>

/*!
    The roller centre's path through one course's lines, in mm. Points are
    looked up in order along it, so the search starts where the last one was
    found and only searches the whole path when nothing near passes there.
*/
class ZELKinNCPath
{
public:
    //! Where the nearest segment of the path lies from a point.
    struct Nearest
    {
        double distance = std::numeric_limits<double>::infinity();
        //! The index of the vertex that ends the segment.
        int end = 0;
    };

    //! A point of finite coordinates; the path leaves the others out.
    static bool IsFinite(const ZELMathPoint& point);

    //! Adds the roller centre of the line `line` when it is finite.
    void Add(const ZELMathPoint& centre, unsigned line);

    //! Makes room for `vertices` vertices at once.
    void Reserve(int vertices)
    {
        m_vertices.reserve(vertices);
        m_lines.reserve(vertices);
    }

    bool IsEmpty() const { return m_vertices.isEmpty(); }
    int GetNumVertices() const { return int(m_vertices.size()); }
    //! Where the next NearestTo searches first: around the vertex
    //! `vertex`, where the caller knows the point is passed.
    void SetHint(int vertex) { m_hint = vertex; }
    //! The line of the vertex `vertex`.
    unsigned LineOf(int vertex) const { return m_lines.at(vertex); }

    //! The segment nearest to `point`, searched first around the last one
    //! found when that one lies within `gate`.
    Nearest NearestTo(const ZELMathPoint& point, double gate);

private:
    Nearest NearestIn(const ZELMathPoint& point, int from, int to) const;

    QList<ZELMathPoint> m_vertices;
    QList<unsigned> m_lines;
    int m_hint = 0;
};

#endif // ZELKINNCPATH_P_H

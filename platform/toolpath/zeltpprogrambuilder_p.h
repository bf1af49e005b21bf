#ifndef ZELTPPROGRAMBUILDER_P_H
#define ZELTPPROGRAMBUILDER_P_H

#include "zeltpfieldreaders_p.h"

#include <zelcomptowmask.h>

#include <QList>

#include <cstddef>
#include <memory>
#include <vector>

class ZELGeoContainer;
class ZELGeoGeometry;
class ZELTPCourseLink;
class ZELTPPoint;
class ZELTPProbingProcedure;
class ZELTPProcedure;
class ZELTPProgram;
class ZELTPRollLayupProcedure;
class ZELTPTowCourse;

namespace ZELTPReading {

// A trajectory as the document gives it; its points are a run of the
// chain's points, from `firstPoint` on.
struct TrajectoryRecord
{
    TrajectoryKind kind = TrajectoryKind::OffPart;
    double feedrate = 0.0;
    double forwardTilt = 0.0;
    double sideTilt = 0.0;
    double smoothingAngle = 0.0;
    ZELCompTowMask towMask;
    ZELCompTowMask forcedMask;
    QList<double> forcedRates;
    std::size_t firstPoint = 0;
    std::size_t numPoints = 0;
};

/*
    The entries of a roll layup's "courses" array when they are parsed one
    at a time, apart from the procedure's own document, in which each
    stands as "{}".
*/
class EntrySource
{
public:
    virtual ~EntrySource() = default;
    //! Entry `index`; valid until the next call.
    virtual simdjson::dom::element Parse(qsizetype index) = 0;
    //! Parses the entries not asked for yet, so that a syntax error among
    //! them is reported as the whole document's parse would report it.
    virtual void ParseRest() = 0;
};

/*
    Builds the program of one document in a container. The geometries it
    creates are deleted again, newest first, unless the whole program is
    built; the container's modified flag is then restored as well.

    Links, courses and probing procedures are each read as one chain of
    points: the trajectories' points in order, where within a course the
    first point of a trajectory is the last point of the one before. The
    chain is read whole before its geometries are created.
*/
class ProgramBuilder
{
public:
    explicit ProgramBuilder(ZELGeoContainer* container);
    ~ProgramBuilder();

    Q_DISABLE_COPY_MOVE(ProgramBuilder)

    ZELTPProgram* Build(const Value& root);
    //! The program of the document `root` without its procedures, which
    //! are read one at a time (BuildAlone); the procedures member must
    //! still be an array.
    ZELTPProgram* BuildHead(const Value& root);
    //! One procedure of the document on its own; `procedure` carries its
    //! location in the whole document. With `courses`, a roll layup's
    //! courses come from there instead of from `procedure`.
    ZELTPProcedure* BuildAlone(const Value& procedure, EntrySource* courses = nullptr);

private:
    ZELTPProgram* BuildProgram(const Value& root, bool withProcedures);
    //! Initialises what was built, which then stays.
    void Finish();
    ZELTPProcedure* BuildProcedure(const Value& procedure);
    ZELTPRollLayupProcedure* BuildRollLayup(const Value& procedure);
    ZELTPProbingProcedure* BuildProbing(const Value& procedure);
    ZELTPCourseLink* BuildLink(const Value& link);
    ZELTPTowCourse* BuildCourse(const Value& course);

    void ReadOffPartChain(const Value& trajectories);
    void ReadCourseChain(const Value& trajectories, const ZELCompTowMask& courseMask);
    TrajectoryRecord ReadTrajectory(const Value& trajectory, Role role, const ZELCompTowMask& courseMask,
                                    bool joinsPrevious);
    void ReadTowFields(const Value& trajectory, const ZELCompTowMask& courseMask, TrajectoryRecord& record) const;
    void JoinPoint(const PointRecord& copy, const Value& point);
    void CreatePoints(std::size_t indexOrigin);
    template <typename Owner> void AddTrajectories(Owner* owner) const;

    template <typename T, typename... Arguments> T* Create(const Arguments&... arguments)
    {
        auto geometry = std::make_unique<T>(m_container, arguments...);
        m_created.push_back(geometry.get());
        return geometry.release();
    }

    ZELGeoContainer* const m_container;
    const bool m_wasModified;
    std::vector<ZELGeoGeometry*> m_created;
    bool m_built = false;
    EntrySource* m_courses = nullptr;

    // The chain being read; kept from chain to chain for their storage.
    std::vector<PointRecord> m_points;
    std::vector<TrajectoryRecord> m_trajectories;
    std::vector<ZELTPPoint*> m_pointObjects;
};

} // namespace ZELTPReading

#endif // ZELTPPROGRAMBUILDER_P_H

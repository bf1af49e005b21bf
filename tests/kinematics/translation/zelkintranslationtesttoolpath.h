#ifndef ZELKINTRANSLATIONTESTTOOLPATH_H
#define ZELKINTRANSLATIONTESTTOOLPATH_H

#include <zelcomptowmask.h>
#include <zelgeocontainer.h>
#include <zelmathaxis.h>
#include <zelmathplane.h>
#include <zeltpcourselink.h>
#include <zeltpoffpartpoint.h>
#include <zeltponparttrajectory.h>
#include <zeltppoint.h>
#include <zeltpprobingprocedure.h>
#include <zeltpprogram.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptoolchangelink.h>
#include <zeltptowcourse.h>
#include <zeltptowtrajectory.h>
#include <zeltptrajectory.h>

#include <QList>
#include <QString>

#include <utility>

/*!
    Toolpath programs built through the toolpath API for the translator
    tests, on a flat panel that the example gantry reaches: the part surface
    lies at Z = -1500 mm, every frame travels +X with its normal +Z (the
    gantry's wrist at zero), and courses run along +X inside X 3000..4000
    mm, Y 3000..4000 mm.

    A course's points are 10 mm apart along X, from its start X on, and
    consecutive trajectories share their end points. With the default shape
    and a start at X = 3200 mm:

    | trajectory | points (X, mm)       | kind, feed rate (mm/min)                 |
    |------------|----------------------|------------------------------------------|
    | approach   | 3200 (lifted), 3210  | off-part, 10000                          |
    | roll-in    | 3210, 3220, 3230     | on-part, 6000; roll-in point 3220        |
    | tow run 1  | 3230, 3240, 3250     | tows 1-12, tows 1-4 forced at 0.5, 5000  |
    | tow run 2  | 3250, 3260, 3270     | tows 5-16, 1-8 forced (5-8 at 0.7), 5500 |
    | roll-out   | 3270, 3280, 3290     | on-part, 4000; roll-out point 3290       |
    | retract    | 3290, 3300 (lifted)  | off-part, 9000                           |

    The on-part points 3210 to 3290 carry the indices 0 to 8, so the course
    counts 9 points; the two lifted ones are off-part points. Each on-part
    trajectory has tilts of its own (see the Shape defaults).
*/
namespace ZELKinTranslationTest {

constexpr double kPartZ = -1500.0;
constexpr double kLift = 100.0;
constexpr double kLinkLift = 300.0;
constexpr double kSpacing = 10.0;
constexpr int kTows = 16;
constexpr double kLinkFeedrate = 12000.0;

//! A frame with the normal +Z travelling +X, or -X when `reversed`.
inline ZELMathAxis FlatFrame(double x, double y, double z, bool reversed = false)
{
    const double ahead = reversed ? -1.0 : 1.0;
    return ZELMathAxis(ZELMathPoint(x, y, z), ZELMathVector(ahead, 0, 0), ZELMathVector(0, ahead, 0),
                       ZELMathVector(0, 0, 1));
}

//! The head's 16 tows with tows `first` to `last` (from 1) enabled; none
//! when `first` is greater than `last`.
inline ZELCompTowMask Tows(int first, int last)
{
    ZELCompTowMask mask(kTows, false);
    for (int tow = first; tow <= last; ++tow)
        mask.SetTowEnabled(tow, true);
    return mask;
}

//! One forced rate per tow: `rate` for tows `first` to `last`, 0 elsewhere.
inline QList<double> Rates(int first, int last, double rate)
{
    QList<double> rates(kTows, 0.0);
    for (int tow = first; tow <= last; ++tow)
        rates[tow - 1] = rate;
    return rates;
}

struct Tilts
{
    double forward;
    double side;
    double smoothing;
};

struct TowRun
{
    ZELCompTowMask laid;
    ZELCompTowMask forced;
    QList<double> rates;
    double feedrate;
    Tilts tilts;
    int numPoints = 3;
};

//! How a course is laid out; the defaults give the course of the table above.
struct Shape
{
    double startX = 3200.0;
    double y = 3500.0;
    int approachPoints = 2;
    double approachFeedrate = 10000.0;
    int rollInPoints = 3;
    //! Where the roller touches down; -1 leaves the roll-in point unset.
    int rollInPointIndex = 1;
    double rollInFeedrate = 6000.0;
    Tilts rollInTilts{0.10, 0.01, 0.20};
    QList<TowRun> runs{{Tows(1, 12), Tows(1, 4), Rates(1, 4, 0.5), 5000.0, {0.11, 0.02, 0.21}, 3},
                       {Tows(5, 16), Tows(1, 8), Rates(5, 8, 0.7), 5500.0, {0.12, 0.03, 0.22}, 3}};
    int rollOutPoints = 3;
    //! Where the roller lifts off; -1 leaves the roll-out point unset.
    int rollOutPointIndex = 2;
    double rollOutFeedrate = 4000.0;
    Tilts rollOutTilts{0.13, 0.04, 0.23};
    int retractPoints = 2;
    double retractFeedrate = 9000.0;
    ZELCompTowMask used = Tows(1, 16);
    ZELTPMachineConfiguration configuration{ZELTPRoller(QStringLiteral("R16"), 101.6),
                                            ZELTPAFPHead(QStringLiteral("H1"), 6.35)};
    //! The index of an on-part point whose frame travels -X: half a turn of
    //! the head from its neighbours, which no continuous move makes. -1
    //! for none.
    int halfTurnIndex = -1;
};

//! Builds toolpath objects in a container; the container owns them all.
class ToolpathBuilder
{
public:
    explicit ToolpathBuilder(ZELGeoContainer* container)
        : m_container(container)
        , m_program(new ZELTPProgram(container, QStringLiteral("flat panel")))
    {
    }

    ZELTPProgram* GetProgram() const { return m_program; }

    ZELTPPoint* OnPartPoint(double x, double y, int index, bool reversed = false)
    {
        auto* point = new ZELTPPoint(m_container, FlatFrame(x, y, kPartZ, reversed));
        point->SetIndex(index);
        return point;
    }

    ZELTPOffPartPoint* OffPartPoint(double x, double y, double lift)
    {
        return new ZELTPOffPartPoint(m_container, FlatFrame(x, y, kPartZ + lift));
    }

    //! A roll layup procedure with its feed rates, material, plies and
    //! safety plane, appended to the program, without a path yet.
    ZELTPRollLayupProcedure* AddLayup(const QString& name)
    {
        auto* layup = new ZELTPRollLayupProcedure(m_container, name);
        layup->SetAddingFeedrate(2540.0);
        layup->SetCuttingFeedrate(1270.0);
        layup->SetMaterialDescription(ZELTPMaterialDescription(QStringLiteral("T35-E120"), QStringLiteral("carbon")));
        layup->SetTotalMaterialLength(1440.0);
        layup->AddPlyDescription(ZELTPPlyDescription(QStringLiteral("P0"), 0.0, ZELCompStrategy::Angle));
        layup->AddPlyDescription(ZELTPPlyDescription(QStringLiteral("P45"), 0.785, ZELCompStrategy::GeodesicOffset));
        layup->SetSafetyPlane(ZELMathPlane(ZELMathPoint(0, 0, -1000), ZELMathVector(0, 0, 1)));
        m_program->AddProcedure(layup);
        return layup;
    }

    //! A layup whose path runs through `shapes`: an approach link, the
    //! courses, a link between each two and a retract link, each link of
    //! low detail through one point lifted 300 mm.
    ZELTPRollLayupProcedure* AddFlatLayup(const QString& name, const QList<Shape>& shapes = {Shape()})
    {
        ZELTPRollLayupProcedure* layup = AddLayup(name);
        ZELTPCourseLink* link = LiftedLink(QStringLiteral("approach"), shapes.first().startX - 100.0, shapes.first().y);
        layup->SetApproachLink(link);
        for (int i = 0; i < shapes.size(); ++i) {
            ZELTPTowCourse* course = AddCourse(QStringLiteral("course %1").arg(i + 1), shapes.at(i));
            link->SetToCourse(course);
            link = LiftedLink(QStringLiteral("link %1").arg(i + 1), EndX(shapes.at(i)) + 100.0, shapes.at(i).y);
            course->SetRetractLink(link);
        }
        return layup;
    }

    //! A link of low detail with one trajectory through one point lifted
    //! 300 mm at (x, y).
    ZELTPCourseLink* LiftedLink(const QString& name, double x, double y)
    {
        auto* link = new ZELTPCourseLink(m_container, name);
        link->SetPointsDetail(ZELTPCourseLink::PointsDetailLow);
        link->AddTrajectory(Trajectory(kLinkFeedrate, {OffPartPoint(x, y, kLinkLift)}));
        return link;
    }

    static ZELTPTrajectory* Trajectory(double feedrate, const QList<ZELTPPoint*>& points)
    {
        auto* trajectory = new ZELTPTrajectory(feedrate);
        AddPoints(trajectory, points);
        return trajectory;
    }

    //! The X of a course's last point, the end of its retract.
    static double EndX(const Shape& shape)
    {
        int numPoints = shape.approachPoints + shape.rollInPoints + shape.rollOutPoints + shape.retractPoints - 3;
        for (const TowRun& run : shape.runs)
            numPoints += run.numPoints - 1;
        return shape.startX + kSpacing * (numPoints - 1);
    }

    //! A tow course laid out as `shape` says (see the table above).
    ZELTPTowCourse* AddCourse(const QString& name, const Shape& shape)
    {
        auto* course = new ZELTPTowCourse(m_container, name);
        course->SetUsedTowMask(shape.used);
        course->SetMachineConfiguration(shape.configuration);
        QList<double> lengths;
        for (int tow = 0; tow < kTows; ++tow)
            lengths.append(100.0 + tow);
        course->SetTowLengths(lengths);

        CourseCursor cursor{this, shape.startX, shape.y, shape.halfTurnIndex, 0, nullptr};
        course->AddTrajectory(cursor.Approach(shape.approachFeedrate, shape.approachPoints));
        auto* rollIn = cursor.OnPart(new ZELTPOnPartTrajectory(shape.rollInFeedrate, shape.rollInTilts.forward,
                                                               shape.rollInTilts.side, shape.rollInTilts.smoothing),
                                     shape.rollInPoints);
        course->AddTrajectory(rollIn);
        for (const TowRun& run : shape.runs)
            course->AddTrajectory(
                cursor.OnPart(new ZELTPTowTrajectory(run.feedrate, run.tilts.forward, run.tilts.side,
                                                     run.tilts.smoothing, run.laid, run.forced, run.rates),
                              run.numPoints));
        auto* rollOut = cursor.OnPart(new ZELTPOnPartTrajectory(shape.rollOutFeedrate, shape.rollOutTilts.forward,
                                                                shape.rollOutTilts.side, shape.rollOutTilts.smoothing),
                                      shape.rollOutPoints);
        course->AddTrajectory(rollOut);
        course->AddTrajectory(cursor.Retract(shape.retractFeedrate, shape.retractPoints));
        if (shape.rollInPointIndex >= 0)
            course->SetRollInPoint(rollIn->GetPoint(shape.rollInPointIndex));
        if (shape.rollOutPointIndex >= 0)
            course->SetRollOutPoint(rollOut->GetPoint(shape.rollOutPointIndex));
        return course;
    }

    //! A probing procedure appended to the program: trajectory i holds
    //! `trajectories[i]`, lifted off the part, and leads to target i.
    ZELTPProbingProcedure* AddProbing(const QString& name, const QList<QList<ZELMathPoint>>& trajectories,
                                      const QList<double>& feedrates, const QList<double>& diameters)
    {
        auto* probing = new ZELTPProbingProcedure(m_container, name);
        for (int i = 0; i < trajectories.size(); ++i) {
            QList<ZELTPPoint*> points;
            for (const ZELMathPoint& point : trajectories.at(i))
                points.append(new ZELTPOffPartPoint(m_container, FlatFrame(point.GetX(), point.GetY(), point.GetZ())));
            probing->AddTrajectory(Trajectory(feedrates.at(i), points));
        }
        for (const double diameter : diameters)
            probing->AddProbingPoint(ZELTPProbingPoint(diameter));
        probing->SetSafetyPlane(ZELMathPlane(ZELMathPoint(0, 0, -900), ZELMathVector(0, 0, 1)));
        m_program->AddProcedure(probing);
        return probing;
    }

private:
    static void AddPoints(ZELTPTrajectory* trajectory, const QList<ZELTPPoint*>& points)
    {
        for (ZELTPPoint* point : points)
            trajectory->AddPoint(point);
    }

    // Walks along a course, handing each trajectory the previous one's last
    // point as its first.
    struct CourseCursor
    {
        ToolpathBuilder* builder;
        double x;
        double y;
        int halfTurnIndex;
        int nextIndex;
        ZELTPPoint* last;

        ZELTPPoint* NextOnPart()
        {
            last = builder->OnPartPoint(x, y, nextIndex, nextIndex == halfTurnIndex);
            ++nextIndex;
            x += kSpacing;
            return last;
        }

        ZELTPPoint* NextOffPart()
        {
            last = builder->OffPartPoint(x, y, kLift);
            x += kSpacing;
            return last;
        }

        // Lifted points, then the first on-part point.
        ZELTPTrajectory* Approach(double feedrate, int numPoints)
        {
            auto* trajectory = new ZELTPTrajectory(feedrate);
            for (int i = 0; i < numPoints - 1; ++i)
                trajectory->AddPoint(NextOffPart());
            trajectory->AddPoint(NextOnPart());
            return trajectory;
        }

        template <typename OnPartKind> OnPartKind* OnPart(OnPartKind* trajectory, int numPoints)
        {
            trajectory->AddPoint(last);
            for (int i = 1; i < numPoints; ++i)
                trajectory->AddPoint(NextOnPart());
            return trajectory;
        }

        // The last on-part point, then lifted points.
        ZELTPTrajectory* Retract(double feedrate, int numPoints)
        {
            auto* trajectory = new ZELTPTrajectory(feedrate);
            trajectory->AddPoint(last);
            for (int i = 1; i < numPoints; ++i)
                trajectory->AddPoint(NextOffPart());
            return trajectory;
        }
    };

    ZELGeoContainer* m_container;
    ZELTPProgram* m_program;
};

} // namespace ZELKinTranslationTest

#endif // ZELKINTRANSLATIONTESTTOOLPATH_H

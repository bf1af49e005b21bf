// The program and its procedures, and a whole toolpath program carried
// through the container: every field and link compared after a load, and
// damaged files that load or throw but never crash.

#include "zeltptestsupport.h"

#include <zeltpcourselink.h>
#include <zeltpoffpartpoint.h>
#include <zeltponparttrajectory.h>
#include <zeltpprobingprocedure.h>
#include <zeltpprogram.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptoolchangelink.h>
#include <zeltptowcourse.h>
#include <zeltptowtrajectory.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <QLocale>
#include <QRandomGenerator>

#include <cmath>

using ZELTPTest::Same;

TEST(ZELTPProgram, StartsAtRevisionZeroWithoutProcedures)
{
    const ZELTPProgram loading(nullptr, ZELGeoGeometryRef());
    const ZELTPProgram creating(nullptr, QStringLiteral("wing skin"));
    for (const ZELTPProgram* program : {&loading, &creating}) {
        EXPECT_EQ(program->GetRevision(), QStringLiteral("0"));
        EXPECT_EQ(program->GetNumProcedures(), 0);
        EXPECT_TRUE(program->GetProcedures().isEmpty());
    }
    EXPECT_EQ(creating.GetName(), QStringLiteral("wing skin"));
}

TEST(ZELTPProgram, SetRevisionKeepsTheTextAndMarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* program = new ZELTPProgram(&container, QStringLiteral("wing skin"));
    container.SetModified(false);
    program->SetRevision(QStringLiteral("B.2"));
    EXPECT_EQ(program->GetRevision(), QStringLiteral("B.2"));
    EXPECT_TRUE(container.IsModified());
}

TEST(ZELTPProgram, ProceduresAreKeptInOrderAndAddingMarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* program = new ZELTPProgram(&container, QStringLiteral("wing skin"));
    auto* layup = new ZELTPRollLayupProcedure(&container, QStringLiteral("ply 1"));
    auto* probe = new ZELTPProbingProcedure(&container, QStringLiteral("probe"));
    container.SetModified(false);
    program->AddProcedure(layup);
    EXPECT_TRUE(container.IsModified());
    program->AddProcedure(probe);
    program->AddProcedure(layup);
    EXPECT_EQ(program->GetNumProcedures(), 3);
    EXPECT_EQ(program->GetProcedure(0), layup);
    EXPECT_EQ(program->GetProcedure(1), probe);
    EXPECT_EQ(program->GetProcedures(), QList<ZELTPProcedure*>({layup, probe, layup}));
}

TEST(ZELTPProgram, GetProcedureOutsideTheListThrows)
{
    ZELTPProgram program(nullptr, QStringLiteral("wing skin"));
    EXPECT_THROW_MESSAGE(program.GetProcedure(0), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, -1]");
    ZELTPProcedure procedure(nullptr, QStringLiteral("ply 1"));
    program.AddProcedure(&procedure);
    EXPECT_THROW_MESSAGE(program.GetProcedure(1), ZELSysOutOfBoundsException, "value 1 is out of bounds [0, 0]");
    EXPECT_THROW_MESSAGE(program.GetProcedure(-1), ZELSysOutOfBoundsException, "value -1 is out of bounds [0, 0]");
}

TEST(ZELTPProgram, AddingANullProcedureThrowsAndChangesNothing)
{
    ZELTPProgram program(nullptr, QStringLiteral("wing skin"));
    EXPECT_THROW_MESSAGE(program.AddProcedure(nullptr), ZELSysException, "cannot add a null procedure");
    EXPECT_EQ(program.GetNumProcedures(), 0);
}

TEST(ZELTPProgram, ADestroyedProcedureKeepsItsPlaceAndReadsNull)
{
    ZELGeoContainer container;
    auto* program = new ZELTPProgram(&container, QStringLiteral("wing skin"));
    auto* first = new ZELTPRollLayupProcedure(&container, QStringLiteral("ply 1"));
    auto* second = new ZELTPRollLayupProcedure(&container, QStringLiteral("ply 2"));
    program->AddProcedure(first);
    program->AddProcedure(second);
    container.DeleteGeometry(first);
    EXPECT_EQ(program->GetNumProcedures(), 2);
    EXPECT_EQ(program->GetProcedure(0), nullptr);
    EXPECT_EQ(program->GetProcedures(), QList<ZELTPProcedure*>({nullptr, second}));
    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("wing skin") << QStringLiteral("0") << qint32(2) << ZELGeoGeometryRef()
          << second->GetReference();
    });
    EXPECT_EQ(program->GetCurrentState(), expected);
}

TEST(ZELTPProgram, RecordIsTheNameRevisionAndProcedureReferences)
{
    ZELGeoContainer container;
    auto* program = new ZELTPProgram(&container, QStringLiteral("wing skin"));
    auto* layup = new ZELTPRollLayupProcedure(&container, QStringLiteral("ply 1"));
    auto* probe = new ZELTPProbingProcedure(&container, QStringLiteral("probe"));
    program->SetRevision(QStringLiteral("7"));
    program->AddProcedure(probe);
    program->AddProcedure(layup);
    const QByteArray expected = ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("wing skin") << QStringLiteral("7") << qint32(2) << probe->GetReference()
          << layup->GetReference();
    });
    EXPECT_EQ(program->GetCurrentState(), expected);
}

TEST(ZELTPProgram, AProcedureThatNamesNothingThrowsNotFound)
{
    ZELGeoContainer container;
    auto* program = new ZELTPProgram(&container, QStringLiteral("wing skin"));
    const QByteArray record = ZELTPTest::Record([](ZELGeoStream& s) {
        s << QStringLiteral("wing skin") << QStringLiteral("0") << qint32(1) << ZELGeoGeometryRef(5000);
    });
    EXPECT_THROW_MESSAGE(program->SetCurrentState(record), ZELGeoGeometryNotFoundException,
                         "no geometry of class ZELTPProcedure with reference 5000");
}

TEST(ZELTPProgram, AProcedureCountBeyondTheRecordStopsAtItsEnd)
{
    ZELGeoContainer container;
    auto* program = new ZELTPProgram(&container, QStringLiteral("wing skin"));
    auto* procedure = new ZELTPProcedure(&container, QStringLiteral("ply 1"));
    program->SetCurrentState(ZELTPTest::Record([&](ZELGeoStream& s) {
        s << QStringLiteral("wing skin") << QStringLiteral("3") << qint32(0x7fffffff) << procedure->GetReference();
    }));
    EXPECT_EQ(program->GetRevision(), QStringLiteral("3"));
    EXPECT_EQ(program->GetProcedures(), QList<ZELTPProcedure*>({procedure}));
}

namespace {

ZELCompTowMask Tows(std::initializer_list<int> enabled)
{
    ZELCompTowMask mask(8, false);
    for (const int tow : enabled)
        mask.SetTowEnabled(tow, true);
    return mask;
}

ZELTPMachineConfiguration Narrow()
{
    return ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R25"), 25.4),
                                     ZELTPAFPHead(QStringLiteral("H8"), 3.175));
}

ZELTPMachineConfiguration Wide()
{
    return ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R50"), 50.8),
                                     ZELTPAFPHead(QStringLiteral("H8"), 6.35));
}

/*
    A program of a roll layup and a probing procedure, built as a toolpath
    generator would:

    layup: approach -> course 1 -> tool change -> course 2 -> retract
    probe: to target 1, to target 2, away

    Each course chains approach, roll-in, two tow trajectories, roll-out and
    retract; the on-part points are numbered along each course.
*/
struct WholeProgram
{
    ZELGeoContainer container;
    ZELTPProgram* program = new ZELTPProgram(&container, QStringLiteral("Spar C-section"));
    ZELTPRollLayupProcedure* layup = new ZELTPRollLayupProcedure(&container, QStringLiteral("Ply +45"));
    ZELTPCourseLink* approach = new ZELTPCourseLink(&container, QStringLiteral("approach"));
    ZELTPToolChangeLink* toolChange = new ZELTPToolChangeLink(&container, QStringLiteral("tool change"));
    ZELTPCourseLink* retract = new ZELTPCourseLink(&container, QStringLiteral("retract"));
    ZELTPTowCourse* first = new ZELTPTowCourse(&container, QStringLiteral("course 1"));
    ZELTPTowCourse* second = new ZELTPTowCourse(&container, QStringLiteral("course 2"));
    ZELTPProbingProcedure* probe = new ZELTPProbingProcedure(&container, QStringLiteral("Probe datums"));

    WholeProgram()
    {
        program->SetRevision(QStringLiteral("C"));
        program->AddProcedure(layup);
        program->AddProcedure(probe);

        layup->SetSafetyPlane(ZELTPTest::TiltedPlane());
        layup->SetAddingFeedrate(3000.0);
        layup->SetCuttingFeedrate(1500.0);
        layup->SetMaterialDescription(ZELTPMaterialDescription(QStringLiteral("T35-E120"), QStringLiteral("T35")));
        layup->SetTotalMaterialLength(4321.5);
        layup->AddPlyDescription(ZELTPPlyDescription(QStringLiteral("+45"), M_PI / 4.0, ZELCompStrategy::Offset));
        layup->AddPlyDescription(ZELTPPlyDescription(QStringLiteral("-45"), -M_PI / 4.0, ZELCompStrategy::Geodesic));
        layup->SetApproachLink(approach);

        approach->SetPointsDetail(ZELTPCourseLink::PointsDetailLow);
        approach->AddTrajectory(Off(25000.0, {{0.0, 0.0, 600.0}, {0.0, 0.0, 50.0}}));
        approach->SetToCourse(first);

        Lay(first, 0.0, Narrow(), Tows({1, 2, 3, 4}));
        first->SetRetractLink(toolChange);

        toolChange->SetPointsDetail(ZELTPCourseLink::PointsDetailMedium);
        toolChange->AddTrajectory(Off(20000.0, {{400.0, 0.0, 50.0}, {400.0, 0.0, 600.0}}));
        toolChange->AddTrajectory(Off(20000.0, {{400.0, 100.0, 600.0}, {0.0, 100.0, 50.0}}));
        toolChange->SetToolRemovePoint(toolChange->GetTrajectory(0)->GetPoint(1));
        toolChange->SetPreviousMachineConfiguration(Narrow());
        toolChange->SetNextMachineConfiguration(Wide());
        toolChange->SetToCourse(second);

        Lay(second, 100.0, Wide(), Tows({1, 2, 3, 4, 5, 6, 7, 8}));
        second->SetRetractLink(retract);
        retract->AddTrajectory(Off(25000.0, {{400.0, 100.0, 50.0}, {400.0, 100.0, 600.0}}));

        probe->SetSafetyPlane(ZELMathPlane(ZELMathPoint(0.0, 0.0, 700.0), ZELMathVector(0.0, 0.0, 1.0)));
        probe->AddTrajectory(Off(5000.0, {{0.0, 500.0, 600.0}, {0.0, 500.0, 20.0}}));
        probe->AddTrajectory(Off(2000.0, {{0.0, 500.0, 20.0}, {300.0, 500.0, 20.0}}));
        probe->AddTrajectory(Off(5000.0, {{300.0, 500.0, 20.0}, {300.0, 500.0, 600.0}}));
        probe->AddProbingPoint(ZELTPProbingPoint(25.4));
        probe->AddProbingPoint(ZELTPProbingPoint(50.8));
    }

    ZELTPTrajectory* Off(double feedrate, std::initializer_list<ZELMathPoint> at)
    {
        auto* trajectory = new ZELTPTrajectory(feedrate);
        for (const ZELMathPoint& p : at)
            trajectory->AddPoint(
                new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(p.GetX(), p.GetY(), p.GetZ())));
        return trajectory;
    }

    // Approach and retract off the part, the rest on it along x at y, with
    // consecutive trajectories sharing their end points.
    void Lay(ZELTPTowCourse* course, double y, const ZELTPMachineConfiguration& tooling, const ZELCompTowMask& used)
    {
        course->SetUsedTowMask(used);
        course->SetMachineConfiguration(tooling);
        QList<double> lengths(8, 0.0);
        for (int tow = 1; tow <= 8; ++tow) {
            if (used.IsTowEnabled(tow))
                lengths[tow - 1] = 380.0 + tow;
        }
        course->SetTowLengths(lengths);

        QList<ZELTPPoint*> on;
        for (int i = 0; i < 5; ++i) {
            on.append(new ZELTPPoint(&container, ZELTPTest::FrameAt(100.0 * i, y, 0.0)));
            on.last()->SetIndex(i);
        }
        auto* high = new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(0.0, y, 300.0));
        auto* above = new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(0.0, y, 50.0));
        auto* away = new ZELTPOffPartPoint(&container, ZELTPTest::FrameAt(400.0, y, 50.0));
        ZELCompTowMask half = used;
        for (int tow = 1; tow <= 8; ++tow) {
            if (tow > 2)
                half.SetTowEnabled(tow, false);
        }
        const QList<double> forcedRates({1.05, 0.95, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0});
        ZELTPTrajectory* chain[] = {
            new ZELTPTrajectory(8000.0),
            new ZELTPOnPartTrajectory(2000.0, 0.05, 0.0, std::nan("")),
            new ZELTPTowTrajectory(6000.0, 0.05, 0.01, 0.2, used, half, forcedRates),
            new ZELTPTowTrajectory(6000.0, 0.05, -0.01, 0.2, half, ZELCompTowMask(8, false), {}),
            new ZELTPOnPartTrajectory(2000.0, 0.05, 0.0, std::nan("")),
            new ZELTPTrajectory(8000.0),
        };
        const QList<QList<ZELTPPoint*>> points = {{high, above},  {above, on[0]}, {on[0], on[1], on[2]},
                                                  {on[2], on[3]}, {on[3], on[4]}, {on[4], away}};
        for (int t = 0; t < 6; ++t) {
            for (ZELTPPoint* point : points.at(t))
                chain[t]->AddPoint(point);
            course->AddTrajectory(chain[t]);
        }
        course->SetRollInPoint(on[0]);
        course->SetRollOutPoint(on[4]);
    }
};

// Every digit of a double, so that two texts agree only for the same value.
QString Exactly(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

// What a trajectory is, in words that two loads of one program share; points
// are named by their place in `geometries`.
QString Describe(const ZELTPTrajectory* trajectory, const QList<ZELGeoGeometry*>& geometries)
{
    QString text = QString::fromLatin1(typeid(*trajectory).name()) + QStringLiteral(" at ")
                   + Exactly(trajectory->GetFeedrate());
    if (const auto* onPart = dynamic_cast<const ZELTPOnPartTrajectory*>(trajectory))
        text += QStringLiteral(" tilt %1 %2 smoothing %3")
                    .arg(Exactly(onPart->GetForwardTilt()), Exactly(onPart->GetSideTilt()),
                         Exactly(onPart->GetSmoothingAngle()));
    if (const auto* tows = dynamic_cast<const ZELTPTowTrajectory*>(trajectory)) {
        text += QStringLiteral(" tows %1 forced %2 rates")
                    .arg(tows->GetTowMask().GetHexadecimalString(), tows->GetForcedMask().GetHexadecimalString());
        for (const double rate : tows->GetForcedRates())
            text += QLatin1Char(' ') + Exactly(rate);
    }
    text += QStringLiteral(" points");
    for (const ZELTPPoint* point : trajectory->GetPoints())
        text += QStringLiteral(" #%1").arg(geometries.indexOf(const_cast<ZELTPPoint*>(point)));
    return text;
}

} // namespace

TEST(ZELTPProgram, AWholeProgramSurvivesSaveAndLoadWithEveryFieldAndLink)
{
    WholeProgram w;
    const QList<ZELGeoGeometry*> original = w.container.GetGeometries();

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(w.container, target);
    ASSERT_EQ(loaded.size(), original.size());
    for (int i = 0; i < loaded.size(); ++i)
        EXPECT_STREQ(loaded.at(i)->metaObject()->className(), original.at(i)->metaObject()->className()) << i;

    // The same object in the other container: same place in creation order.
    const auto in = [&](const ZELGeoGeometry* object) {
        const qsizetype at = original.indexOf(const_cast<ZELGeoGeometry*>(object));
        return at < 0 ? nullptr : loaded.at(at);
    };

    const QList<ZELTPProgram*> programs = ZELTPTest::AllOf<ZELTPProgram>(loaded);
    ASSERT_EQ(programs.size(), 1);
    const ZELTPProgram* program = programs.first();
    EXPECT_EQ(program->GetName(), QStringLiteral("Spar C-section"));
    EXPECT_EQ(program->GetRevision(), QStringLiteral("C"));
    ASSERT_EQ(program->GetNumProcedures(), 2);

    // The roll layup procedure and its path.
    const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(program->GetProcedure(0));
    ASSERT_NE(layup, nullptr);
    EXPECT_EQ(layup, in(w.layup));
    EXPECT_EQ(layup->GetName(), QStringLiteral("Ply +45"));
    EXPECT_TRUE(Same(ZELTPTest::TiltedPlane(), layup->GetSafetyPlane()));
    EXPECT_TRUE(ZELTest::SameDouble(3000.0, layup->GetAddingFeedrate(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1500.0, layup->GetCuttingFeedrate(), ZELTest::kExact));
    EXPECT_EQ(layup->GetMaterialDescription().GetId(), QStringLiteral("T35-E120"));
    EXPECT_EQ(layup->GetMaterialDescription().GetName(), QStringLiteral("T35"));
    EXPECT_TRUE(ZELTest::SameDouble(4321.5, layup->GetTotalMaterialLength(), ZELTest::kExact));
    ASSERT_EQ(layup->GetNumPlyDescriptions(), 2);
    EXPECT_EQ(layup->GetPlyDescription(1).GetName(), QStringLiteral("-45"));
    EXPECT_TRUE(ZELTest::SameDouble(-M_PI / 4.0, layup->GetPlyDescription(1).GetOrientation(), ZELTest::kExact));
    EXPECT_EQ(layup->GetPlyDescription(0).GetPropagationMode(), ZELCompStrategy::Offset);
    EXPECT_EQ(layup->GetPlyDescription(1).GetPropagationMode(), ZELCompStrategy::Geodesic);

    const ZELTPCourseLink* approach = layup->GetApproachLink();
    ASSERT_EQ(approach, in(w.approach));
    EXPECT_EQ(approach->GetPointsDetail(), ZELTPCourseLink::PointsDetailLow);
    const auto* first = qobject_cast<const ZELTPTowCourse*>(approach->GetToCourse());
    ASSERT_EQ(first, in(w.first));
    const auto* toolChange = qobject_cast<const ZELTPToolChangeLink*>(first->GetRetractLink());
    ASSERT_EQ(toolChange, in(w.toolChange));
    EXPECT_EQ(toolChange->GetPointsDetail(), ZELTPCourseLink::PointsDetailMedium);
    EXPECT_EQ(toolChange->GetToolRemovePoint(), in(w.toolChange->GetToolRemovePoint()));
    EXPECT_EQ(toolChange->GetPreviousMachineConfiguration().GetTool().GetName(), QStringLiteral("R25"));
    EXPECT_EQ(toolChange->GetNextMachineConfiguration().GetTool().GetName(), QStringLiteral("R50"));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, toolChange->GetNextMachineConfiguration().GetHead().GetTowWidth(),
                                    ZELTest::kExact));
    const auto* second = qobject_cast<const ZELTPTowCourse*>(toolChange->GetToCourse());
    ASSERT_EQ(second, in(w.second));
    const ZELTPCourseLink* retract = second->GetRetractLink();
    ASSERT_EQ(retract, in(w.retract));
    EXPECT_EQ(retract->GetToCourse(), nullptr);

    // Every link's and course's trajectories, points by place.
    for (const ZELTPCourseLink* link : {w.approach, static_cast<ZELTPCourseLink*>(w.toolChange), w.retract}) {
        const auto* copy = qobject_cast<const ZELTPCourseLink*>(in(link));
        ASSERT_EQ(copy->GetNumTrajectories(), link->GetNumTrajectories()) << link->GetName().toStdString();
        for (int t = 0; t < link->GetNumTrajectories(); ++t)
            EXPECT_EQ(Describe(copy->GetTrajectory(t), loaded), Describe(link->GetTrajectory(t), original))
                << link->GetName().toStdString() << " " << t;
    }
    for (const ZELTPTowCourse* course : {w.first, w.second}) {
        const auto* copy = qobject_cast<const ZELTPTowCourse*>(in(course));
        EXPECT_EQ(copy->GetName(), course->GetName());
        EXPECT_TRUE(copy->GetUsedTowMask() == course->GetUsedTowMask());
        EXPECT_EQ(copy->GetMachineConfiguration().GetTool().GetName(),
                  course->GetMachineConfiguration().GetTool().GetName());
        EXPECT_TRUE(ZELTPTest::SameDoubles(course->GetTowLengths(), copy->GetTowLengths()));
        EXPECT_EQ(copy->GetRollInPoint(), in(course->GetRollInPoint()));
        EXPECT_EQ(copy->GetRollOutPoint(), in(course->GetRollOutPoint()));
        EXPECT_EQ(copy->GetNumPoints(), 5);
        ASSERT_EQ(copy->GetNumTrajectories(), 6);
        for (int t = 0; t < 6; ++t)
            EXPECT_EQ(Describe(copy->GetTrajectory(t), loaded), Describe(course->GetTrajectory(t), original))
                << course->GetName().toStdString() << " " << t;
        EXPECT_NE(dynamic_cast<const ZELTPTowTrajectory*>(copy->GetNextTrajectory(copy->GetRollInTrajectory())),
                  nullptr);
    }

    // Every point: frame, index and trajectory.
    for (const ZELTPPoint* point : ZELTPTest::AllOf<ZELTPPoint>(original)) {
        const auto* copy = qobject_cast<const ZELTPPoint*>(in(point));
        EXPECT_STREQ(copy->metaObject()->className(), point->metaObject()->className());
        EXPECT_TRUE(Same(point->GetToolFrame(), copy->GetToolFrame()));
        EXPECT_EQ(copy->GetIndex(), point->GetIndex());
        ASSERT_NE(copy->GetTrajectory(), nullptr);
        EXPECT_EQ(Describe(copy->GetTrajectory(), loaded), Describe(point->GetTrajectory(), original));
    }

    // The probing procedure.
    const auto* probe = qobject_cast<const ZELTPProbingProcedure*>(program->GetProcedure(1));
    ASSERT_EQ(probe, in(w.probe));
    EXPECT_EQ(probe->GetName(), QStringLiteral("Probe datums"));
    EXPECT_TRUE(Same(w.probe->GetSafetyPlane(), probe->GetSafetyPlane()));
    ASSERT_EQ(probe->GetNumTrajectories(), 3);
    for (int t = 0; t < 3; ++t)
        EXPECT_EQ(Describe(probe->GetTrajectory(t), loaded), Describe(w.probe->GetTrajectory(t), original)) << t;
    ASSERT_EQ(probe->GetNumProbingPoints(), 2);
    EXPECT_TRUE(ZELTest::SameDouble(25.4, probe->GetProbingPoint(0).GetDiameter(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(50.8, probe->GetProbingPoint(1).GetDiameter(), ZELTest::kExact));
}

TEST(ZELTPProgram, AWholeProgramWithARecordCutShortLoadsWithoutCrashing)
{
    // Every record of the file, in turn, cut to half its body (the frame
    // still matches): the container loads and what it holds can be walked.
    WholeProgram w;
    const QList<ZELGeoGeometry*> geometries = w.container.GetGeometries();
    for (int cut = 0; cut < geometries.size(); ++cut) {
        QBuffer file;
        file.open(QIODevice::WriteOnly);
        QDataStream out(&file);
        out.setVersion(ZELGeoStream::DataStreamVersion);
        out << ZELGeoContainer::FileMagic << ZELGeoContainer::FileVersion << qint32(geometries.size());
        for (int index = 0; index < geometries.size(); ++index) {
            const QByteArray className = geometries.at(index)->metaObject()->className();
            QByteArray body = geometries.at(index)->GetCurrentState();
            if (index == cut)
                body.truncate(body.size() / 2);
            out << quint32(className.size());
            out.writeRawData(className.constData(), int(className.size()));
            out << geometries.at(index)->GetReference().GetIdentity() << quint32(body.size());
            out.writeRawData(body.constData(), int(body.size()));
        }
        file.close();
        file.open(QIODevice::ReadOnly);
        ZELGeoContainer target;
        ASSERT_NO_THROW(target.Load(&file)) << "record " << cut;
        EXPECT_EQ(target.GetNumGeometries(), geometries.size());
        for (const ZELTPTowCourse* course : ZELTPTest::AllOf<ZELTPTowCourse>(target.GetGeometries())) {
            // A point cut short before its index reads index 0, as any
            // number past the end of a record does, and counts as on-part.
            EXPECT_LE(course->GetNumPoints(), 8) << "record " << cut;
            EXPECT_LE(course->GetNumTrajectories(), 6) << "record " << cut;
        }
        for (const ZELTPCourseLink* link : ZELTPTest::AllOf<ZELTPCourseLink>(target.GetGeometries()))
            EXPECT_LE(link->GetNumPoints(), 4) << "record " << cut;
    }
}

// A damaged file must end in an exception or in objects that can be walked,
// never in a crash.
TEST(ZELTPProgram, ADamagedWholeProgramLoadsOrThrowsAndCanBeWalked)
{
    WholeProgram w;
    QBuffer saved;
    saved.open(QIODevice::WriteOnly);
    w.container.Save(&saved);
    const QByteArray original = saved.data();

    QRandomGenerator random(20261123);
    int loaded = 0;
    for (int round = 0; round < 1000; ++round) {
        QByteArray bytes = original;
        const int flips = 1 + int(random.bounded(4));
        for (int flip = 0; flip < flips; ++flip)
            bytes[int(random.bounded(int(bytes.size())))] = char(random.bounded(256));
        ZELGeoContainer target;
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        try {
            target.Load(&device);
        } catch (const std::exception&) {
            EXPECT_EQ(target.GetNumGeometries(), 0) << "round " << round;
            continue;
        }
        ++loaded;
        for (const ZELTPProgram* program : ZELTPTest::AllOf<ZELTPProgram>(target.GetGeometries())) {
            for (const ZELTPProcedure* procedure : program->GetProcedures()) {
                if (const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(procedure)) {
                    // A damaged record may link scripts into a loop: walk a bounded number of steps.
                    const ZELTPCourseLink* link = layup->GetApproachLink();
                    for (int step = 0; link && step < 10; ++step) {
                        link->GetPoints();
                        const ZELTPCourse* course = link->GetToCourse();
                        if (const auto* tows = qobject_cast<const ZELTPTowCourse*>(course))
                            tows->GetNumPoints();
                        link = course ? course->GetRetractLink() : nullptr;
                    }
                }
            }
        }
    }
    EXPECT_GT(loaded, 0);
}

// The checks of posted NC against the toolpath: the example flat panel is
// translated for the example machine and posted in this process, read back
// once, and verified as posted and with one thing changed in what was read.

#include <zelkinverifier.h>

#include <zelgeocontainer.h>
#include <zelkinafpmachine.h>
#include <zelkinmachineloader.h>
#include <zelkinncreplay.h>
#include <zelkinprogram.h>
#include <zelkinsolver.h>
#include <zelkintranslator.h>
#include <zelkinvariable.h>
#include <zelkinwriter.h>
#include <zelsysexception.h>
#include <zeltestsupport.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zeltpprogramstream.h>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr double kDegree = 0.017453292519943295;
constexpr double kInch = 25.4;
//! A value a finding reports, read back from its four or three decimals.
constexpr double kReported = 0.02;
//! Run times in seconds, summed in another order.
constexpr double kSummed = 1e-9;

// The example flat panel, posted for the example machine once for all the
// tests: reading back and verifying take a fraction of the time posting
// does.
class ZELKinVerifierTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { s_posted = std::make_unique<Posted>(); }

    static void TearDownTestSuite() { s_posted.reset(); }

    struct Posted
    {
        Posted()
        {
            QFile description(QStringLiteral(ZELKIN_EXAMPLES_DIR "/machines/gantry-rbr.xml"));
            description.open(QIODevice::ReadOnly);
            machine = qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(&container).LoadFromXML(&description));
            solver.reset(machine->CreateSolver());
            toolpath
                = ZELTPProgramReader(&container).Read(QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/flat-panel.json"));
            ZELKinProgram* program = ZELKinTranslator(solver.get()).Translate(toolpath);
            // The files are named after the program, as zelkin post names them.
            program->SetOriginalFileName(toolpath->GetName());
            ZELKinWriter(program).Write(folder.path(), QStringLiteral("AFPGCode"), QString());
            nc = ZELKinNCReplay(*machine).Read(folder.path());
        }

        ZELGeoContainer container;
        ZELKinAFPMachine* machine = nullptr;
        std::unique_ptr<ZELKinSolver> solver;
        const ZELTPProgram* toolpath = nullptr;
        QTemporaryDir folder;
        ZELKinNCProgram nc;
    };

    static ZELKinVerification Verify(const ZELKinNCProgram& nc)
    {
        return ZELKinVerifier(*s_posted->machine, ZELKinVerifyGates()).Verify(*s_posted->toolpath, nc);
    }

    static int IndexOf(const QString& label)
    {
        return int(s_posted->machine->GetVariables().indexOf(s_posted->machine->GetVariable(label)));
    }

    // The findings of the check `check`.
    static QList<ZELKinVerifyFinding> FindingsOf(const ZELKinVerification& verification, const QString& check)
    {
        QList<ZELKinVerifyFinding> findings;
        for (const ZELKinVerifyFinding& finding : verification.findings) {
            if (finding.check == check)
                findings.append(finding);
        }
        return findings;
    }

    // The first motion along a course in the first ply, past its first
    // `skip` such lines.
    static int MotionAlongACourse(const ZELKinNCPlyFile& ply, int skip)
    {
        for (int i = 0; i < ply.motions.size(); ++i) {
            if (ply.motions.at(i).alongCourse && skip-- == 0)
                return i;
        }
        ADD_FAILURE() << "the ply has too few lines along its courses";
        return 0;
    }

    static constexpr const char* kToolpathFile = ZELKIN_EXAMPLES_DIR "/toolpaths/flat-panel.json";

    // `nc` handed over one ply at a time; `reads` tells which ply was read
    // and `handled` which was handed back, in the order they happened.
    static ZELKinVerifier::NCSource OneAtATime(const ZELKinNCProgram& nc, QStringList& events)
    {
        ZELKinVerifier::NCSource source = ZELKinVerifier::NCSource::Whole(nc);
        source.readPly = [&nc, &events](int index) {
            events.append(QStringLiteral("read ") + nc.plies.at(index).plyNumber);
            return nc.plies.at(index);
        };
        return source;
    }

    // The same findings in the same order, and the same tallies per ply.
    static void ExpectSameVerification(const ZELKinVerification& expected, const ZELKinVerification& actual)
    {
        ASSERT_EQ(actual.findings.size(), expected.findings.size());
        for (int i = 0; i < expected.findings.size(); ++i) {
            const ZELKinVerifyFinding& wanted = expected.findings.at(i);
            const ZELKinVerifyFinding& got = actual.findings.at(i);
            EXPECT_EQ(got.check, wanted.check) << i;
            EXPECT_EQ(got.plyNumber, wanted.plyNumber) << i;
            EXPECT_EQ(got.procedure, wanted.procedure) << i;
            EXPECT_EQ(got.place.course, wanted.place.course) << i;
            EXPECT_EQ(got.place.point, wanted.place.point) << i;
            EXPECT_EQ(got.place.file, wanted.place.file) << i;
            EXPECT_EQ(got.place.line, wanted.place.line) << i;
            EXPECT_EQ(got.subject, wanted.subject) << i;
            EXPECT_EQ(got.message, wanted.message) << i;
            EXPECT_EQ(got.warning, wanted.warning) << i;
            EXPECT_TRUE(ZELTest::SameDouble(wanted.value, got.value, ZELTest::kExact)) << i;
            EXPECT_TRUE(ZELTest::SameDouble(wanted.limit, got.limit, ZELTest::kExact)) << i;
        }
        ASSERT_EQ(actual.plies.size(), expected.plies.size());
        for (int i = 0; i < expected.plies.size(); ++i) {
            const ZELKinVerifiedPly& wanted = expected.plies.at(i);
            const ZELKinVerifiedPly& got = actual.plies.at(i);
            EXPECT_EQ(got.plyNumber, wanted.plyNumber);
            EXPECT_EQ(got.procedure, wanted.procedure);
            EXPECT_EQ(got.courses, wanted.courses);
            EXPECT_EQ(got.motionLines, wanted.motionLines);
            EXPECT_EQ(got.matchedLines, wanted.matchedLines);
            EXPECT_EQ(got.findings, wanted.findings);
            EXPECT_EQ(got.courseTallies.size(), wanted.courseTallies.size());
            EXPECT_TRUE(ZELTest::SameDouble(wanted.centre.value, got.centre.value, ZELTest::kExact));
            EXPECT_TRUE(ZELTest::SameDouble(wanted.runTime.seconds, got.runTime.seconds, ZELTest::kExact));
        }
        EXPECT_TRUE(ZELTest::SameDouble(expected.runTime.seconds, actual.runTime.seconds, ZELTest::kExact));
    }

    static std::unique_ptr<Posted> s_posted;
};

std::unique_ptr<ZELKinVerifierTest::Posted> ZELKinVerifierTest::s_posted;

TEST_F(ZELKinVerifierTest, ThePostedPanelPassesEveryCheckWithEveryCourseMatched)
{
    const ZELKinVerification verification = Verify(s_posted->nc);
    EXPECT_EQ(verification.GetNumFailures(), 0) << verification.findings.value(0).message.toStdString();
    ASSERT_EQ(verification.plies.size(), 4);
    for (const ZELKinVerifiedPly& ply : verification.plies) {
        EXPECT_EQ(ply.courses, 4) << ply.plyNumber.toStdString();
        EXPECT_EQ(ply.courseTallies.size(), 4) << ply.plyNumber.toStdString();
        EXPECT_GE(ply.matchedLines, 4 * 20) << ply.plyNumber.toStdString();
        EXPECT_GT(ply.linkLines, 0) << ply.plyNumber.toStdString();
        EXPECT_EQ(ply.lines.size(), ply.motionLines) << ply.plyNumber.toStdString();
        EXPECT_LE(ply.centre.value, verification.gates.centre) << ply.plyNumber.toStdString();
        EXPECT_LE(ply.pathGap.value, verification.gates.centre) << ply.plyNumber.toStdString();
    }
}

// The roller centre never runs faster than the feed: each ply takes at
// least its feed lines' centre travel at their feeds, and more, since the
// head speeds up and slows down.
TEST_F(ZELKinVerifierTest, EachPlyOfThePostedPanelTakesLongerThanItsFeedsAloneAndItsCoursesAddUpToIt)
{
    const ZELKinVerification verification = Verify(s_posted->nc);
    ASSERT_EQ(verification.plies.size(), s_posted->nc.plies.size());
    const QList<int> centre{IndexOf(QStringLiteral("X")), IndexOf(QStringLiteral("Y")), IndexOf(QStringLiteral("Z"))};
    double plies = 0.0;
    for (int p = 0; p < verification.plies.size(); ++p) {
        const ZELKinVerifiedPly& ply = verification.plies.at(p);
        double atFeed = 0.0;
        for (const ZELKinNCMotion& motion : s_posted->nc.plies.at(p).motions) {
            double squared = 0.0;
            for (const int axis : centre)
                squared += std::pow(motion.values.at(axis) - motion.starts.at(axis), 2);
            if (!motion.rapid && std::isfinite(squared))
                atFeed += std::sqrt(squared) / (motion.feedrate / 60.0);
        }
        EXPECT_TRUE(ply.runTime.IsComplete()) << ply.plyNumber.toStdString();
        EXPECT_EQ(ply.runTime.motionLines, ply.motionLines) << ply.plyNumber.toStdString();
        EXPECT_GT(atFeed, 0.0) << ply.plyNumber.toStdString();
        EXPECT_GT(ply.runTime.seconds, atFeed) << ply.plyNumber.toStdString();
        double courses = 0.0;
        for (const ZELKinVerifiedCourse& course : ply.courseTallies) {
            EXPECT_GT(course.runTime.seconds, 0.0) << ply.plyNumber.toStdString() << ", course " << course.course;
            EXPECT_EQ(course.runTime.motionLines, course.motionLines)
                << ply.plyNumber.toStdString() << ", course " << course.course;
            courses += course.runTime.seconds;
        }
        EXPECT_TRUE(ZELTest::SameDouble(ply.runTime.seconds, courses, kSummed)) << ply.plyNumber.toStdString();
        plies += ply.runTime.seconds;
    }
    EXPECT_TRUE(ZELTest::SameDouble(plies, verification.runTime.seconds, kSummed));
    EXPECT_TRUE(verification.runTime.IsComplete());
}

// NC that leaves out a link's lift off the part drags the head from the
// course's end straight to the link's next point.
TEST_F(ZELKinVerifierTest, ALinkPointNoLinePassesIsAPathFindingNamingTheLinkAndThePoint)
{
    EXPECT_TRUE(FindingsOf(Verify(s_posted->nc), QStringLiteral("path")).isEmpty());
    ZELKinNCProgram nc = s_posted->nc;
    QList<ZELKinNCMotion>& motions = nc.plies.first().motions;
    const auto lift = std::find_if(motions.begin(), motions.end(),
                                   [](const ZELKinNCMotion& motion) { return motion.link == 1; });
    ASSERT_NE(lift, motions.end());
    motions.erase(lift);
    const QList<ZELKinVerifyFinding> findings = FindingsOf(Verify(nc), QStringLiteral("path"));
    ASSERT_EQ(findings.size(), 1);
    EXPECT_EQ(findings.first().place.course, 1);
    EXPECT_EQ(findings.first().place.point, 1);
    EXPECT_TRUE(findings.first().message.startsWith(
        QStringLiteral("no line's roller centre passes within 0.0100 mm of point 1 of link 1: the nearest passes ")))
        << findings.first().message.toStdString();
    EXPECT_GT(findings.first().value, ZELKinVerifyGates().centre);
}

// A tenth of an inch is what a misread X word moves the roller by.
TEST_F(ZELKinVerifierTest, AnXWordATenthOfAnInchOffAlongACourseIsACentreFindingOnItsLine)
{
    ZELKinNCProgram nc = s_posted->nc;
    ZELKinNCPlyFile& ply = nc.plies.first();
    ZELKinNCMotion& motion = ply.motions[MotionAlongACourse(ply, 3)];
    motion.values[IndexOf(QStringLiteral("X"))] += 0.1 * kInch;
    const QList<ZELKinVerifyFinding> findings = FindingsOf(Verify(nc), QStringLiteral("centre"));
    ASSERT_EQ(findings.size(), 1);
    const ZELKinVerifyFinding& finding = findings.first();
    EXPECT_EQ(finding.plyNumber, ply.plyNumber);
    EXPECT_EQ(finding.procedure, ply.procedure);
    EXPECT_EQ(finding.place.file, ply.path);
    EXPECT_EQ(finding.place.line, motion.line);
    EXPECT_EQ(finding.place.course, motion.course);
    EXPECT_GT(finding.place.point, 0);
    EXPECT_TRUE(ZELTest::SameDouble(0.1 * kInch, finding.value, kReported));
    EXPECT_TRUE(finding.message.startsWith(QStringLiteral("the roller centre is 2.5")))
        << finding.message.toStdString();
    EXPECT_TRUE(finding.message.endsWith(QStringLiteral(" mm from the toolpath point's (gate 0.0100 mm)")))
        << finding.message.toStdString();
    EXPECT_FALSE(finding.warning);
}

TEST_F(ZELKinVerifierTest, AFirstRollTurnedFortyDegreesInsideACourseIsAFlip)
{
    ZELKinNCProgram nc = s_posted->nc;
    ZELKinNCPlyFile& ply = nc.plies.first();
    const int index = MotionAlongACourse(ply, 5);
    const int c = IndexOf(QStringLiteral("C"));
    ply.motions[index].values[c] += 40.0 * kDegree;
    ply.motions[index + 1].starts[c] += 40.0 * kDegree;
    const QList<ZELKinVerifyFinding> flips = FindingsOf(Verify(nc), QStringLiteral("flip"));
    ASSERT_FALSE(flips.isEmpty());
    EXPECT_EQ(flips.first().place.line, ply.motions.at(index).line);
    EXPECT_EQ(flips.first().subject, QStringLiteral("C"));
    EXPECT_TRUE(flips.first().message.startsWith(QStringLiteral("C turns 4"))) << flips.first().message.toStdString();
    EXPECT_TRUE(
        flips.first().message.endsWith(QStringLiteral(" deg from the line before, inside the course: a wrist flip "
                                                      "(gate 30.000 deg)")))
        << flips.first().message.toStdString();
}

// The second roll turns the roller about its own axis: the slides stay
// where they are, and only its own limit is crossed.
TEST_F(ZELKinVerifierTest, ARotaryWordBeyondItsMaximumIsALimitFindingNamingTheLimitInDegrees)
{
    ZELKinNCProgram nc = s_posted->nc;
    ZELKinNCPlyFile& ply = nc.plies.first();
    const double maximum = s_posted->machine->GetVariable(QStringLiteral("C1"))->GetMaximum();
    ZELKinNCMotion& motion = ply.motions.last();
    motion.values[IndexOf(QStringLiteral("C1"))] = maximum + 1.0 * kDegree;
    const QList<ZELKinVerifyFinding> limits = FindingsOf(Verify(nc), QStringLiteral("limit"));
    ASSERT_EQ(limits.size(), 1) << limits.value(1).message.toStdString();
    EXPECT_EQ(limits.first().place.line, motion.line);
    EXPECT_EQ(limits.first().subject, QStringLiteral("C1"));
    EXPECT_TRUE(ZELTest::SameDouble(maximum / kDegree + 1.0, limits.first().value, ZELTest::kTight));
    EXPECT_EQ(limits.first().message,
              QStringLiteral("C1 at %1 deg is beyond its maximum of %2 deg")
                  .arg(QString::number(maximum / kDegree + 1.0, 'f', 4), QString::number(maximum / kDegree, 'f', 4)));
}

TEST_F(ZELKinVerifierTest, ATowAddAMillimetreLaterThanTheToolpathsIsATowFinding)
{
    ZELKinNCProgram nc = s_posted->nc;
    ZELKinNCPlyFile& ply = nc.plies.first();
    ASSERT_FALSE(ply.towEvents.isEmpty());
    ZELKinNCTowEvent& event = ply.towEvents.first();
    ASSERT_EQ(event.code, QStringLiteral("A/B"));
    event.u += 1.0;
    const QList<ZELKinVerifyFinding> tows = FindingsOf(Verify(nc), QStringLiteral("tow"));
    ASSERT_FALSE(tows.isEmpty());
    const ZELKinVerifyFinding& finding = tows.first();
    EXPECT_EQ(finding.place.line, event.line);
    EXPECT_EQ(finding.place.course, event.course);
    EXPECT_TRUE(ZELTest::SameDouble(event.u, finding.value, ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(1.0, finding.value - finding.limit, kReported));
    EXPECT_TRUE(finding.message.startsWith(QStringLiteral("the NC adds tow "))) << finding.message.toStdString();
    EXPECT_TRUE(finding.message.endsWith(QStringLiteral(" mm (gate 0.010 mm)"))) << finding.message.toStdString();
}

TEST_F(ZELKinVerifierTest, AProcedureWithoutItsPlyFileIsMissing)
{
    ZELKinNCProgram nc = s_posted->nc;
    const QString procedure = nc.plies.at(1).procedure;
    nc.plies.removeAt(1);
    const QList<ZELKinVerifyFinding> missing = FindingsOf(Verify(nc), QStringLiteral("missing"));
    ASSERT_EQ(missing.size(), 1);
    EXPECT_EQ(missing.first().procedure, procedure);
    EXPECT_EQ(missing.first().message, QStringLiteral("the NC has no ply file for the procedure '%1'").arg(procedure));
}

TEST_F(ZELKinVerifierTest, APlyOfAProcedureTheToolpathDoesNotHaveIsAProgramFinding)
{
    ZELKinNCProgram nc = s_posted->nc;
    const QString laid = nc.plies.first().procedure;
    nc.plies.first().procedure = QStringLiteral("Nowhere");
    const ZELKinVerification verification = Verify(nc);
    const QList<ZELKinVerifyFinding> program = FindingsOf(verification, QStringLiteral("program"));
    ASSERT_EQ(program.size(), 1);
    EXPECT_EQ(program.first().message,
              QStringLiteral("ply %1 lays the procedure 'Nowhere', which the toolpath does not have")
                  .arg(nc.plies.first().plyNumber));
    const QList<ZELKinVerifyFinding> missing = FindingsOf(verification, QStringLiteral("missing"));
    ASSERT_EQ(missing.size(), 1);
    EXPECT_EQ(missing.first().procedure, laid);
}

// The checks trust nothing the NC says of itself: what the read-back found
// irregular is a finding as it stands.
TEST_F(ZELKinVerifierTest, WhatTheReadBackFoundIrregularIsAFindingOfItsOwnCheck)
{
    ZELKinNCProgram nc = s_posted->nc;
    ZELKinNCPlyFile& ply = nc.plies.first();
    ply.irregularities.append(ZELKinNCIrregularity{QStringLiteral("code"), ply.path, 42, 1, QStringLiteral("M0"),
                                                   QStringLiteral("M0 stops the program between the ply's motion "
                                                                  "lines")});
    const QList<ZELKinVerifyFinding> codes = FindingsOf(Verify(nc), QStringLiteral("code"));
    ASSERT_EQ(codes.size(), 1);
    EXPECT_EQ(codes.first().place.line, 42u);
    EXPECT_EQ(codes.first().subject, QStringLiteral("M0"));
    EXPECT_EQ(codes.first().message, QStringLiteral("M0 stops the program between the ply's motion lines"));
}

TEST_F(ZELKinVerifierTest, ThePostedPanelCheckedOnePlyAndProcedureAtATimeGivesWhatTheWholeChecksGive)
{
    ZELTPProgramStream stream;
    stream.Open(QString::fromUtf8(kToolpathFile));
    const ZELKinNCReplay replay(*s_posted->machine);
    const ZELKinVerifier verifier(*s_posted->machine, ZELKinVerifyGates());
    const ZELKinVerification byPly = verifier.Verify(ZELKinVerifier::ToolpathSource::ByProcedure(stream),
                                                     ZELKinVerifier::NCSource::ByPly(replay, s_posted->folder.path()));
    EXPECT_EQ(byPly.GetNumFailures(), 0) << byPly.findings.value(0).message.toStdString();
    ExpectSameVerification(Verify(s_posted->nc), byPly);
}

TEST_F(ZELKinVerifierTest, PliesCheckedWithoutTheirLinesHoldNoneAndFindWhatTheChecksWithThemFind)
{
    ZELKinNCProgram nc = s_posted->nc;
    ZELKinNCPlyFile& off = nc.plies[1];
    off.motions[MotionAlongACourse(off, 3)].values[IndexOf(QStringLiteral("X"))] += 0.1 * kInch;
    ZELKinVerifier verifier(*s_posted->machine, ZELKinVerifyGates());
    EXPECT_TRUE(verifier.GetKeepLines());
    verifier.SetKeepLines(false);
    EXPECT_FALSE(verifier.GetKeepLines());

    int handled = 0;
    const auto handler = [&handled](int, ZELKinVerifiedPly& ply, const QList<ZELKinVerifyFinding>&) {
        ++handled;
        EXPECT_GT(ply.motionLines, 0) << ply.plyNumber.toStdString();
        EXPECT_TRUE(ply.lines.isEmpty()) << ply.plyNumber.toStdString();
    };
    const ZELKinVerification withoutLines = verifier.Verify(ZELKinVerifier::ToolpathSource::Whole(*s_posted->toolpath),
                                                            ZELKinVerifier::NCSource::Whole(nc), handler);
    EXPECT_EQ(handled, nc.plies.size());
    for (const ZELKinVerifiedPly& ply : withoutLines.plies)
        EXPECT_TRUE(ply.lines.isEmpty()) << ply.plyNumber.toStdString();
    const ZELKinVerification withLines = Verify(nc);
    EXPECT_FALSE(withLines.plies.value(1).lines.isEmpty());
    EXPECT_GT(withLines.GetNumFailures(), 0);
    ExpectSameVerification(withLines, withoutLines);
}

// Ply 0102 lays what 0101 lays, 0103 a procedure the toolpath does not
// have, and 0104 is off by a tenth of an inch: the procedures of 0102 and
// 0103 have no ply file.
TEST_F(ZELKinVerifierTest, AFailingProgramCheckedOnePlyAndProcedureAtATimeGivesTheWholeChecksFindingsInOrder)
{
    ZELKinNCProgram nc = s_posted->nc;
    ASSERT_EQ(nc.plies.size(), 4);
    nc.plies[1].procedure = nc.plies.at(0).procedure;
    nc.plies[2].procedure = QStringLiteral("Nowhere");
    ZELKinNCPlyFile& off = nc.plies[3];
    off.motions[MotionAlongACourse(off, 3)].values[IndexOf(QStringLiteral("X"))] += 0.1 * kInch;
    nc.irregularities.append(ZELKinNCIrregularity{QStringLiteral("program"), off.path, 0, 0, QStringLiteral("X.PPSF"),
                                                  QStringLiteral("a second program-set file")});

    ZELTPProgramStream stream;
    stream.Open(QString::fromUtf8(kToolpathFile));
    QStringList events;
    std::vector<std::string> handedFindings;
    const auto handler = [&](int index, ZELKinVerifiedPly& ply, const QList<ZELKinVerifyFinding>& findings) {
        events.append(QStringLiteral("checked %1 as ply %2").arg(ply.plyNumber).arg(index));
        EXPECT_FALSE(ply.lines.isEmpty()) << ply.plyNumber.toStdString();
        for (const ZELKinVerifyFinding& finding : findings) {
            // Which procedure a ply lays is the program's finding: it names
            // no ply.
            if (finding.plyNumber.isEmpty())
                continue;
            EXPECT_EQ(finding.plyNumber, ply.plyNumber) << finding.message.toStdString();
            handedFindings.push_back((ply.plyNumber + QStringLiteral(": ") + finding.message).toStdString());
        }
        ply.lines.clear();
    };
    const ZELKinVerification byPly = ZELKinVerifier(*s_posted->machine, ZELKinVerifyGates())
                                         .Verify(ZELKinVerifier::ToolpathSource::ByProcedure(stream),
                                                 OneAtATime(nc, events), handler);
    const ZELKinVerification whole = Verify(nc);
    EXPECT_GT(whole.GetNumFailures(), 4);
    ExpectSameVerification(whole, byPly);
    // Each ply is read once and handed back before the next is read; the
    // ply of no procedure comes last.
    EXPECT_EQ(events,
              QStringList({QStringLiteral("read 0101"), QStringLiteral("checked 0101 as ply 0"),
                           QStringLiteral("read 0102"), QStringLiteral("checked 0102 as ply 1"),
                           QStringLiteral("read 0104"), QStringLiteral("checked 0104 as ply 3"),
                           QStringLiteral("read 0103"), QStringLiteral("checked 0103 as ply 2")}));
    for (const ZELKinVerifiedPly& ply : byPly.plies)
        EXPECT_TRUE(ply.lines.isEmpty()) << ply.plyNumber.toStdString();
    // A ply is handed every finding of its own that the whole check makes,
    // and no other ply's.
    std::vector<std::string> wholeFindings;
    for (const ZELKinVerifyFinding& finding : whole.findings) {
        if (!finding.plyNumber.isEmpty())
            wholeFindings.push_back((finding.plyNumber + QStringLiteral(": ") + finding.message).toStdString());
    }
    std::sort(handedFindings.begin(), handedFindings.end());
    std::sort(wholeFindings.begin(), wholeFindings.end());
    EXPECT_EQ(handedFindings, wholeFindings);
}

} // namespace

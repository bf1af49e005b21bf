#include "zelkintoolrun.h"

#include <QDir>
#include <QTemporaryDir>

#include <string>

/*
    The product's promise, tried as a user would: parts that
    `zelkin generate-toolpath` makes, of every shape and density, posted for
    the example machine and for machines whose wrists are built otherwise,
    and proved by `zelkin verify` against their toolpaths.
*/

namespace {

struct PartCase
{
    const char* part;
    int pointsPerCourse;
    //! A machine description: the example's, or one of tests/machines.
    const char* machine;
    //! The plies' angles, and how many courses each lays.
    const char* plies = "0,45,-45,90";
    int courses = 3;
};

std::string CaseName(const ::testing::TestParamInfo<PartCase>& info)
{
    QString machine = QString::fromLatin1(info.param.machine);
    machine.replace(QLatin1Char('-'), QLatin1Char('_'));
    return QStringLiteral("%1_%2_%3_%4_courses")
        .arg(QString::fromLatin1(info.param.part))
        .arg(info.param.pointsPerCourse)
        .arg(machine)
        .arg(info.param.courses)
        .toStdString();
}

void PrintTo(const PartCase& param, std::ostream* os)
{
    *os << param.part << " of " << param.courses << " courses of " << param.pointsPerCourse << " points a ply ("
        << param.plies << ") for " << param.machine;
}

QString MachinePath(const char* machine)
{
    const QString name = QString::fromLatin1(machine) + QStringLiteral(".xml");
    if (name == QLatin1String("gantry-rbr.xml"))
        return GetExampleMachinePath();
    return QStringLiteral(ZELKIN_TEST_MACHINES_DIR "/") + name;
}

class ZELKinPostedParts : public ::testing::TestWithParam<PartCase>
{
};

} // namespace

TEST_P(ZELKinPostedParts, PassVerifyAgainstTheirToolpaths)
{
    const PartCase& param = GetParam();
    QTemporaryDir directory;
    const QString toolpath = QDir(directory.path()).filePath(QStringLiteral("part.json"));
    const QString nc = QDir(directory.path()).filePath(QStringLiteral("nc"));
    const QString machine = MachinePath(param.machine);

    const ZELKinToolRun generated = RunZelkin(
        {QStringLiteral("generate-toolpath"), QStringLiteral("--part"), QString::fromLatin1(param.part),
         QStringLiteral("--plies"), QString::fromLatin1(param.plies), QStringLiteral("--courses"),
         QString::number(param.courses), QStringLiteral("--points-per-course"), QString::number(param.pointsPerCourse),
         QStringLiteral("-o"), toolpath});
    ASSERT_EQ(generated.exitCode, 0) << generated.standardError.toStdString();

    const ZELKinToolRun posted = RunZelkin({QStringLiteral("post"), QStringLiteral("--machine"), machine,
                                            QStringLiteral("--toolpath"), toolpath, QStringLiteral("--output"), nc});
    ASSERT_EQ(posted.exitCode, 0) << posted.standardError.toStdString();

    const ZELKinToolRun verified = RunZelkin({QStringLiteral("verify"), QStringLiteral("--machine"), machine,
                                              QStringLiteral("--toolpath"), toolpath, QStringLiteral("--nc"), nc});
    EXPECT_EQ(verified.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(verified.exitCode, 0) << verified.standardOutput.right(4000).toStdString();
    EXPECT_TRUE(verified.standardOutput.contains(QStringLiteral("Result: PASS")))
        << verified.standardOutput.right(4000).toStdString();
}

// Three courses a ply: the middle one runs over the top of the curved
// parts, where the normal is vertical.
INSTANTIATE_TEST_SUITE_P(
    EveryShapeAndWrist, ZELKinPostedParts,
    ::testing::Values(
        PartCase{"flat", 50, "gantry-rbr"}, PartCase{"flat", 500, "gantry-rbr"}, PartCase{"flat", 2500, "gantry-rbr"},
        PartCase{"cylinder", 50, "gantry-rbr"}, PartCase{"cylinder", 500, "gantry-rbr"},
        PartCase{"cylinder", 2500, "gantry-rbr"}, PartCase{"dome", 50, "gantry-rbr"},
        PartCase{"dome", 500, "gantry-rbr"}, PartCase{"dome", 2500, "gantry-rbr"},
        PartCase{"flat", 50, "gantry-offset-wrist"}, PartCase{"flat", 500, "gantry-offset-wrist"},
        PartCase{"flat", 2500, "gantry-offset-wrist"}, PartCase{"cylinder", 50, "gantry-offset-wrist"},
        PartCase{"cylinder", 500, "gantry-offset-wrist"}, PartCase{"cylinder", 2500, "gantry-offset-wrist"},
        PartCase{"dome", 50, "gantry-offset-wrist"}, PartCase{"dome", 500, "gantry-offset-wrist"},
        PartCase{"dome", 2500, "gantry-offset-wrist"}, PartCase{"flat", 50, "gantry-roll-about-y"},
        PartCase{"flat", 500, "gantry-roll-about-y"}, PartCase{"flat", 2500, "gantry-roll-about-y"},
        PartCase{"cylinder", 50, "gantry-roll-about-y"}, PartCase{"cylinder", 500, "gantry-roll-about-y"},
        PartCase{"cylinder", 2500, "gantry-roll-about-y"}, PartCase{"dome", 50, "gantry-roll-about-y"},
        PartCase{"dome", 500, "gantry-roll-about-y"}, PartCase{"dome", 2500, "gantry-roll-about-y"},
        // The flat part lies on this wrist's singularity all along.
        PartCase{"flat", 50, "gantry-roll-about-z"}, PartCase{"flat", 500, "gantry-roll-about-z"},
        PartCase{"flat", 2500, "gantry-roll-about-z"}, PartCase{"cylinder", 50, "gantry-roll-about-z"},
        PartCase{"cylinder", 500, "gantry-roll-about-z"}, PartCase{"cylinder", 2500, "gantry-roll-about-z"}),
    CaseName);

// A 45 deg ply of 250 courses: those across the part's corners are a few
// mm long, their 1 000 points a tenth of a mm apart, where a rotary word
// left out and caught up in one line would drive a slide beyond its speed.
INSTANTIATE_TEST_SUITE_P(PointsATenthOfAMillimetreApart, ZELKinPostedParts,
                         ::testing::Values(PartCase{"cylinder", 1000, "gantry-rbr", "45", 250}), CaseName);

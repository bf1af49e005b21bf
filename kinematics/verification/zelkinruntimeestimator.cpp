#include "zelkinruntimeestimator.h"
#include "zelkinruntimeestimator_p.h"

#include <zelkinafpmachine.h>
#include <zelkinncreplay.h>
#include <zelkinvariable.h>

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Block = ZELKinRunTimeEstimatorPrivate::Block;

// The controller's interpolation cycle: at a junction each axis's speed may
// jump by what its acceleration gives it in this time.
constexpr double kInterpolationCycle = 0.004;
constexpr double kSecondsPerMinute = 60.0;
// An axis that moves less than this (mm, rad) stays put; the post writes
// four decimals.
constexpr double kStill = 1e-9;
// A feed line whose roller centre moves less than this (mm) turns in place.
constexpr double kInPlace = 1e-6;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

const QStringList kCentreAxes{QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z")};

double LimitOf(double limit)
{
    return std::isfinite(limit) && limit > 0.0 ? limit : std::nan("");
}

// An axis without a value on either side of the line does not move.
double TravelOf(const ZELKinNCMotion& motion, int axis)
{
    const double travel = motion.values.at(axis) - motion.starts.at(axis);
    return std::isfinite(travel) ? travel : 0.0;
}

bool Moves(const ZELKinNCMotion& motion)
{
    for (int axis = 0; axis < motion.values.size(); ++axis) {
        if (std::abs(TravelOf(motion, axis)) > kStill)
            return true;
    }
    return false;
}

bool Differ(double a, double b)
{
    return std::isnan(a) != std::isnan(b) || std::abs(a - b) > kStill;
}

// A preset (the course start's G92 of the material axis) changes the value
// an axis holds between two lines; the controller stops for it.
bool IsPresetBetween(const ZELKinNCMotion& before, const ZELKinNCMotion& motion)
{
    for (int axis = 0; axis < motion.starts.size() && axis < before.values.size(); ++axis) {
        if (Differ(motion.starts.at(axis), before.values.at(axis)))
            return true;
    }
    return false;
}

// The highest speed at which the head covers `length` of path, starting
// at `from`, and reaches the other end.
double ReachableFrom(double from, const Block& block)
{
    return std::sqrt(from * from + 2.0 * block.acceleration * block.length);
}

// From `entry` up to the line's speed, or as near it as the line allows,
// and down to `exit`, at the line's acceleration: a trapezoid, or a
// triangle on a line too short to reach the speed.
double DurationOf(const Block& block, double entry, double exit)
{
    const double v = block.speed;
    const double a = block.acceleration;
    if (!std::isfinite(a))
        return block.length / v;
    const double peakSquared = a * block.length + 0.5 * (entry * entry + exit * exit);
    if (peakSquared >= v * v) {
        const double ramps = (2.0 * v * v - entry * entry - exit * exit) / (2.0 * a);
        return (2.0 * v - entry - exit) / a + (block.length - ramps) / v;
    }
    return (2.0 * std::sqrt(peakSquared) - entry - exit) / a;
}

// The course's entry among the result's, made when its first line comes.
int CourseIndexOf(ZELKinPlyRunTime& result, int course)
{
    QList<ZELKinCourseRunTime>& courses = result.courses;
    if (!courses.isEmpty() && courses.last().course == course)
        return int(courses.size()) - 1;
    const auto known = std::find_if(courses.cbegin(), courses.cend(),
                                    [course](const ZELKinCourseRunTime& entry) { return entry.course == course; });
    if (known != courses.cend())
        return int(known - courses.cbegin());
    ZELKinCourseRunTime entry;
    entry.course = course;
    courses.append(entry);
    return int(courses.size()) - 1;
}

} // namespace

ZELKinRunTimeEstimatorPrivate::ZELKinRunTimeEstimatorPrivate(ZELKinRunTimeEstimator* q, const ZELKinAFPMachine& machine)
    : q_ptr(q)
{
    const QList<ZELKinVariable*> variables = machine.GetVariables();
    for (int i = 0; i < variables.size(); ++i) {
        const ZELKinVariable* variable = variables.at(i);
        maxVelocities.append(variable ? LimitOf(variable->GetMaxVelocity()) : std::nan(""));
        maxAccelerations.append(variable ? LimitOf(variable->GetMaxAcceleration()) : std::nan(""));
        if (variable && kCentreAxes.contains(variable->GetLabel()))
            centre.append(i);
    }
}

// Under TRAORI the feed is the roller centre's speed along its path; a
// rapid and a turn in place know no path speed, and move as fast as their
// axes let them.
ZELKinRunTimeEstimatorPrivate::Block ZELKinRunTimeEstimatorPrivate::BlockOf(const ZELKinNCMotion& motion) const
{
    Block block;
    if (!Moves(motion))
        return block;
    const double centreTravel = CentreTravelOf(motion);
    const bool path = !motion.rapid && centreTravel > kInPlace;
    block.kind = path ? Block::Path : Block::Synchronised;
    block.length = path ? centreTravel : 1.0;
    block.speed = path ? motion.feedrate / kSecondsPerMinute : kInfinity;
    KeepWithinAxisLimits(block, motion);
    if (!(block.speed > 0.0) || !std::isfinite(block.speed))
        block.kind = Block::Untimed;
    return block;
}

// Each axis covers its share of the path: none may go faster, or speed up
// faster, than its limits.
void ZELKinRunTimeEstimatorPrivate::KeepWithinAxisLimits(Block& block, const ZELKinNCMotion& motion) const
{
    for (int axis = 0; axis < motion.values.size() && axis < maxVelocities.size(); ++axis) {
        const double share = std::abs(TravelOf(motion, axis)) / block.length;
        if (!(share > 0.0))
            continue;
        if (!std::isnan(maxVelocities.at(axis)))
            block.speed = std::min(block.speed, maxVelocities.at(axis) / share);
        if (!std::isnan(maxAccelerations.at(axis)))
            block.acceleration = std::min(block.acceleration, maxAccelerations.at(axis) / share);
    }
}

double ZELKinRunTimeEstimatorPrivate::CentreTravelOf(const ZELKinNCMotion& motion) const
{
    double squared = 0.0;
    for (const int axis : centre)
        squared += TravelOf(motion, axis) * TravelOf(motion, axis);
    return std::sqrt(squared);
}

// Where two feed lines meet the controller does not stop: each axis's
// speed may jump by what its acceleration gives it in one interpolation
// cycle, and neither line's speed may be passed.
double ZELKinRunTimeEstimatorPrivate::JunctionSpeedOf(const ZELKinNCMotion& before, const Block& ending,
                                                      const ZELKinNCMotion& after, const Block& starting) const
{
    double speed = std::min(ending.speed, starting.speed);
    for (int axis = 0; axis < maxAccelerations.size() && axis < after.values.size(); ++axis) {
        const double jump = std::abs(TravelOf(after, axis) / starting.length - TravelOf(before, axis) / ending.length);
        if (jump > 0.0 && !std::isnan(maxAccelerations.at(axis)))
            speed = std::min(speed, maxAccelerations.at(axis) * kInterpolationCycle / jump);
    }
    return speed;
}

// Each line's start speed, as high as its junction allows and as the
// lines before can reach; the head is at rest at the ply's start, around
// a rapid, a turn in place or a line without a time, and at a preset.
void ZELKinRunTimeEstimatorPrivate::PlanForward(const ZELKinNCPlyFile& ply, std::vector<Block>& blocks,
                                                ZELKinPlyRunTime& result) const
{
    const QList<ZELKinNCMotion>& motions = ply.motions;
    blocks.reserve(size_t(motions.size()));
    int moving = -1;
    bool stop = true;
    for (int i = 0; i < motions.size(); ++i) {
        const ZELKinNCMotion& motion = motions.at(i);
        Block block = BlockOf(motion);
        block.course = CourseIndexOf(result, motion.course);
        ++result.courses[block.course].motionLines;
        stop = stop || motion.rapid || (i > 0 && IsPresetBetween(motions.at(i - 1), motion));
        if (block.kind != Block::Still) {
            if (!stop && block.kind == Block::Path) {
                const Block& before = blocks.at(size_t(moving));
                block.entry = std::min(JunctionSpeedOf(motions.at(moving), before, motion, block),
                                       ReachableFrom(before.entry, before));
            }
            moving = i;
            stop = block.kind != Block::Path;
        }
        blocks.push_back(block);
    }
}

// From the ply's end, where the head is at rest, each line's start speed
// is lowered to what the line can brake from to its end speed; the line's
// time follows from both.
void ZELKinRunTimeEstimatorPrivate::PlanBackwardAndTime(std::vector<Block>& blocks, ZELKinPlyRunTime& result)
{
    double exit = 0.0;
    for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) {
        ZELKinCourseRunTime& course = result.courses[block->course];
        if (block->kind == Block::Untimed) {
            ++course.untimedLines;
            exit = 0.0;
        } else if (block->kind != Block::Still) {
            block->entry = std::min(block->entry, ReachableFrom(exit, *block));
            course.seconds += DurationOf(*block, block->entry, exit);
            exit = block->entry;
        }
    }
}

ZELKinRunTimeEstimator::ZELKinRunTimeEstimator(const ZELKinAFPMachine& machine)
    : ZELKinRunTimeEstimator(new ZELKinRunTimeEstimatorPrivate(this, machine))
{
}

ZELKinRunTimeEstimator::ZELKinRunTimeEstimator(ZELKinRunTimeEstimatorPrivate* d)
    : d_ptr(d)
{
}

ZELKinRunTimeEstimator::~ZELKinRunTimeEstimator() = default;

ZELKinPlyRunTime ZELKinRunTimeEstimator::Estimate(const ZELKinNCPlyFile& ply) const
{
    Q_D(const ZELKinRunTimeEstimator);
    ZELKinPlyRunTime result;
    result.plyNumber = ply.plyNumber;
    result.procedure = ply.procedure;
    std::vector<ZELKinRunTimeEstimatorPrivate::Block> blocks;
    d->PlanForward(ply, blocks, result);
    ZELKinRunTimeEstimatorPrivate::PlanBackwardAndTime(blocks, result);
    for (const ZELKinCourseRunTime& course : std::as_const(result.courses))
        result.Add(course);
    return result;
}

#ifndef ZELKINRUNTIMEESTIMATOR_H
#define ZELKINRUNTIMEESTIMATOR_H

#include "zelkinematics_export.h"
#include "zelkinruntime.h"

#include <memory>

class ZELKinAFPMachine;
class ZELKinRunTimeEstimatorPrivate;
struct ZELKinNCPlyFile;

/*!
    Estimates how long the machine takes to run a posted ply file, from its
    motion lines as ZELKinNCReplay reads them and the machine's axis speed
    and acceleration limits (docs/run-time.md tells the model to NC
    programmers).

    Each line is a straight move in axis space. A feed line runs at its
    feed, the roller centre's speed under TRAORI, lowered until no axis
    moves faster than it may; a rapid, and a feed line whose roller centre
    stays put, move every axis together as fast as the slowest allows. Speed
    changes at the highest acceleration no axis exceeds. The head is at rest
    at the ply's start and end, around each rapid and where an axis is
    preset; elsewhere lines blend at the highest speed at which no axis's
    speed jumps by more than its acceleration allows in one interpolation
    cycle, and a look-ahead makes every such speed reachable.

    Two passes over the lines, one forward and one backward; the only
    memory taken is a few numbers a line and the result.
*/
class ZELKINEMATICS_EXPORT ZELKinRunTimeEstimator
{
public:
    //! `machine` gives the axes' limits, read once; it is not kept.
    explicit ZELKinRunTimeEstimator(const ZELKinAFPMachine& machine);
    virtual ~ZELKinRunTimeEstimator();

    //! The time of each course of `ply` and of the whole ply.
    ZELKinPlyRunTime Estimate(const ZELKinNCPlyFile& ply) const;

protected:
    ZELKinRunTimeEstimator(ZELKinRunTimeEstimatorPrivate* d);

    std::unique_ptr<ZELKinRunTimeEstimatorPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinRunTimeEstimator)
    Q_DISABLE_COPY_MOVE(ZELKinRunTimeEstimator)
};

#endif // ZELKINRUNTIMEESTIMATOR_H

#ifndef ZELKINRUNTIMEESTIMATOR_P_H
#define ZELKINRUNTIMEESTIMATOR_P_H

#include "zelkinruntimeestimator.h"

#include <QVector>

#include <limits>
#include <vector>

struct ZELKinNCMotion;

class ZELKinRunTimeEstimatorPrivate
{
    Q_DECLARE_PUBLIC(ZELKinRunTimeEstimator)

public:
    ZELKinRunTimeEstimatorPrivate(ZELKinRunTimeEstimator* q, const ZELKinAFPMachine& machine);
    virtual ~ZELKinRunTimeEstimatorPrivate() = default;

    //! One motion line as the controller plans it: a straight move along a
    //! path whose length is the roller centre's travel for a feed line that
    //! moves the centre, and 1 for a synchronised move (a rapid, a turn in
    //! place), every axis covering its share of the line as the head covers
    //! the path.
    struct Block
    {
        enum Kind {
            //! No axis moves: no time, and no stop of its own.
            Still,
            //! A feed line that moves the roller centre: it blends with the
            //! feed lines around it.
            Path,
            //! A rapid, or a feed line whose roller centre stays put: from
            //! rest to rest.
            Synchronised,
            //! No speed follows from the line: from rest to rest, its time
            //! unknown.
            Untimed
        };

        Kind kind = Still;
        double length = 0.0;
        //! The highest speed along the path, no axis beyond its limit.
        double speed = 0.0;
        //! The highest acceleration along the path; infinite when no axis
        //! the line moves has a limit.
        double acceleration = std::numeric_limits<double>::infinity();
        //! The speed at the line's start: after the forward pass the most
        //! the lines before allow, after the backward pass the planned one.
        double entry = 0.0;
        //! The line's course among the result's courses.
        int course = 0;
    };

    Block BlockOf(const ZELKinNCMotion& motion) const;
    void KeepWithinAxisLimits(Block& block, const ZELKinNCMotion& motion) const;
    double CentreTravelOf(const ZELKinNCMotion& motion) const;
    double JunctionSpeedOf(const ZELKinNCMotion& before, const Block& ending, const ZELKinNCMotion& after,
                           const Block& starting) const;

    void PlanForward(const ZELKinNCPlyFile& ply, std::vector<Block>& blocks, ZELKinPlyRunTime& result) const;
    static void PlanBackwardAndTime(std::vector<Block>& blocks, ZELKinPlyRunTime& result);

    ZELKinRunTimeEstimator* const q_ptr;
    //! Per machine variable, in the machine's order; NaN where the
    //! description gives no limit, or one that is not above zero.
    QVector<double> maxVelocities;
    QVector<double> maxAccelerations;
    //! The variables X, Y and Z: the roller centre under TRAORI.
    QVector<int> centre;
};

#endif // ZELKINRUNTIMEESTIMATOR_P_H

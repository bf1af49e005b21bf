#ifndef ZELKINVERIFYPLAN_P_H
#define ZELKINVERIFYPLAN_P_H

#include <zelmathaxis.h>
#include <zelmathpoint.h>

#include <QList>
#include <QString>

class ZELTPProgram;
class ZELTPRollLayupProcedure;

//! A toolpath point a line along a course may stand for.
struct ZELKinVerifyTarget
{
    //! From 1, along the course's trajectories.
    int number = 0;
    //! Material from the course's first point (mm), as the post counts it.
    double length = 0.0;
    ZELMathAxis frame;
    ZELMathPoint centre;
};

//! A tow the toolpath adds ("A/B") or cuts ("C/B") at a length of material.
struct ZELKinVerifyTowEvent
{
    QString code;
    int tow = 0;
    double length = 0.0;
};

//! A course of the toolpath as the checks walk it.
struct ZELKinCoursePlan
{
    //! Every point of the course's trajectories, in order, a point two
    //! trajectories share once.
    QList<ZELKinVerifyTarget> targets;
    //! The points from the approach's first through the roll-out point.
    int walked = 0;
    //! The numbers of the roll-in and roll-out points; 0 for none.
    int rollIn = 0;
    int rollOut = 0;
    QList<ZELKinVerifyTowEvent> towEvents;
};

//! A procedure of the toolpath in path order: link 0 leads to course 1,
//! whose retract link 1 leads to course 2, and so on.
struct ZELKinProcedurePlan
{
    QList<ZELKinCoursePlan> courses;
    //! The roller centres of each link's points.
    QList<QList<ZELMathPoint>> links;
};

/*!
    The toolpath as the checks walk it: each roll layup procedure in path
    order, its courses' points with their roller centres and the length of
    material the post counts to them, and the tows each course adds and
    cuts. Lengths in mm.
*/
namespace ZELKinVerifyPlan {

//! `rollerRadius` puts each roller centre above its toolpath point.
ZELKinProcedurePlan PlanProcedure(const ZELTPRollLayupProcedure& procedure, double rollerRadius);
//! The roll layup procedures of `toolpath`, in its order.
QList<const ZELTPRollLayupProcedure*> LayupProceduresOf(const ZELTPProgram& toolpath);
//! The roll layup procedure named `name`; null when there is none.
const ZELTPRollLayupProcedure* ProcedureNamed(const ZELTPProgram& toolpath, const QString& name);

} // namespace ZELKinVerifyPlan

#endif // ZELKINVERIFYPLAN_P_H

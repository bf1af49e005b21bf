#ifndef ZELKINVERIFIER_H
#define ZELKINVERIFIER_H

#include "zelkinncreplay.h"

#include <zelmathpoint.h>

#include <QList>
#include <QString>
#include <QVector>

#include <limits>

class ZELKinAFPMachine;
class ZELKinProgram;
class ZELKinRBRSolver;

//! What the checks allow. Lengths in mm, angles in rad.
struct ZELKinVerifyGates
{
    //! Roller centre against the toolpath point's.
    double centre = 0.01;
    //! Normal and direction of travel against the toolpath point's. A rotary
    //! word is left out while its axis moves less than 0.001 rad, so the
    //! gate must stay above that.
    double angle = 0.06 * 0.017453292519943295;
    //! A rotary step between two lines of one course above this is a flip.
    double flip = 30.0 * 0.017453292519943295;
    //! Closer than this to the wrist's singularity is a finding.
    double singularity = 2.0 * 0.017453292519943295;
    //! A tow event's material position against the toolpath's.
    double towEvent = 0.01;
};

//! Where something was found: the toolpath position and the NC line.
struct ZELKinVerifyPlace
{
    int course = 0;
    //! The course's position the line was matched to, from 1 in the order
    //! the machine runs them; 0 for a line that was not matched.
    int point = 0;
    QString file;
    unsigned line = 0;
};

//! One failed check.
struct ZELKinVerifyFinding
{
    //! "centre", "normal", "travel", "limit", "flip", "speed",
    //! "singularity", "tow" or "missing" (a ply or a course of the program
    //! that no line of the NC runs).
    QString check;
    QString plyNumber;
    QString procedure;
    ZELKinVerifyPlace place;
    //! The axis or tow the finding is about; empty when it is about none.
    QString subject;
    //! What was found and what is allowed, in the units the message gives.
    double value = 0.0;
    double limit = 0.0;
    //! One sentence for people.
    QString message;
};

//! The largest (or, for margins, smallest) value of one check over a ply,
//! and where it was.
struct ZELKinVerifyExtreme
{
    double value = std::numeric_limits<double>::quiet_NaN();
    ZELKinVerifyPlace place;
    QString subject;
};

//! One motion line as the report draws it.
struct ZELKinVerifiedLine
{
    unsigned line = 0;
    int course = 0;
    bool alongCourse = false;
    //! Length of the roller centre's path from the ply's first line (mm).
    double pathLength = 0.0;
    //! The roller centre (mm).
    ZELMathPoint centre;
    //! The machine axes in the machine's order, the linear ones as slide
    //! positions (mm), rotary ones in rad, the material axis in mm; NaN
    //! where unknown.
    QVector<double> axes;
};

//! The counts and worst values of the checks over a stretch of NC: a ply
//! or one of its courses.
struct ZELKinVerifyTally
{
    int motionLines = 0;
    //! Lines along courses matched to a toolpath position and gated.
    int matchedLines = 0;
    //! Link lines (approach, retract, between courses): their positions are
    //! not solved exactly against a toolpath frame, so they are not gated.
    int linkLines = 0;
    //! Feed moves whose roller centre stays put: no speed follows from the feed.
    int movesInPlace = 0;
    int towEvents = 0;
    ZELKinVerifyExtreme centre;
    ZELKinVerifyExtreme normal;
    ZELKinVerifyExtreme travel;
    ZELKinVerifyExtreme rotaryStep;
    ZELKinVerifyExtreme speedRatio;
    ZELKinVerifyExtreme singularityMargin;
    ZELKinVerifyExtreme towEvent;
    //! Not gated: how far link lines lie from the nearest roller centre of
    //! their link's toolpath points (the solver gives link positions at a
    //! procedure's ends the bare point, a roller radius off).
    ZELKinVerifyExtreme linkCentre;
    int findings = 0;
};

//! The checks of one course: its record's lines up to the next course's.
struct ZELKinVerifiedCourse : ZELKinVerifyTally
{
    //! The course number of the ply file, from 1.
    int course = 0;
};

//! Every check of one ply file.
struct ZELKinVerifiedPly : ZELKinVerifyTally
{
    QString plyNumber;
    QString procedure;
    QString file;
    int courses = 0;
    //! The courses the file holds, in its order.
    QList<ZELKinVerifiedCourse> courseTallies;
    QList<ZELKinVerifiedLine> lines;
};

struct ZELKinVerification
{
    ZELKinVerifyGates gates;
    QList<ZELKinVerifiedPly> plies;
    QList<ZELKinVerifyFinding> findings;

    bool IsPassed() const { return findings.isEmpty(); }
};

/*!
    Checks posted NC against the toolpath it was posted from, as a machine
    simulator would: the replayed axis values run through the machine's
    forward kinematics and are matched, line by line, to the positions of
    the solved program. Lines along a course are matched by the material
    axis (the length of material laid since the course start) and, among
    positions at the same length, by the nearest roller centre.

    A layup procedure of the program without a ply file, and a course of a
    ply that no line runs along, are findings. Throws ZELSysException for a
    ply whose procedure or course the program does not have.
*/
class ZELKinVerifier
{
public:
    //! None of the arguments is owned; they must outlive the verifier.
    ZELKinVerifier(const ZELKinAFPMachine& machine, const ZELKinRBRSolver& solver, const ZELKinProgram& program,
                   const ZELKinVerifyGates& gates);

    ZELKinVerification Verify(const QList<ZELKinNCPlyFile>& plies) const;

private:
    void FindPliesNotPosted(const QList<ZELKinNCPlyFile>& plies, QList<ZELKinVerifyFinding>& findings) const;

    const ZELKinAFPMachine& m_machine;
    const ZELKinRBRSolver& m_solver;
    const ZELKinProgram& m_program;
    ZELKinVerifyGates m_gates;
};

#endif // ZELKINVERIFIER_H

#ifndef ZELKINVERIFICATION_H
#define ZELKINVERIFICATION_H

#include "zelkinematics_export.h"
#include "zelkinruntime.h"

#include <zelmathpoint.h>

#include <QList>
#include <QString>
#include <QVector>
#include <QtMath>

#include <limits>

/*
    The results of ZELKinVerifier, as plain values: the gates the checks
    allow, each finding, and per ply and per course the counts and the worst
    value of each check. Nothing here throws.
*/

//! What the checks allow. Lengths in mm, angles in rad.
struct ZELKinVerifyGates
{
    //! A roller centre against the toolpath point's it stands for, a link
    //! line's against its link point's, and a toolpath point's against the
    //! path of the NC lines.
    double centre = 0.01;
    //! How far a rotary word the line writes may be off: its rounding to
    //! four decimals of a degree.
    double rotaryRounding = qDegreesToRadians(0.00005);
    //! How far a rotary word the line leaves out may lag: the post leaves a
    //! word out while its value stays this close to the one the controller
    //! holds.
    double rotaryLag = 0.001;
    //! A rotary step between two lines of one course above this is a flip.
    double flip = qDegreesToRadians(30.0);
    //! Closer than this to the wrist's singularity is a warning.
    double singularity = qDegreesToRadians(2.0);
    //! A tow event's material position against the toolpath's.
    double towEvent = 0.01;
};

//! Where something was found: the toolpath point and the NC line.
struct ZELKinVerifyPlace
{
    int course = 0;
    //! The course's toolpath point, from 1 along its trajectories: the one
    //! a line was matched to, or the one the NC's path misses; 0 for none.
    int point = 0;
    QString file;
    unsigned line = 0;
};

//! One failed check, or a warning.
struct ZELKinVerifyFinding
{
    //! "centre", "contact", "normal", "travel", "link", "path", "missing",
    //! "limit", "flip", "speed", "singularity", "tow", "number", "code" or
    //! "program" (docs/zelkin.md tells what each checks).
    QString check;
    QString plyNumber;
    QString procedure;
    ZELKinVerifyPlace place;
    //! The axis, tow, word, code or file the finding is about; empty when
    //! it is about none.
    QString subject;
    //! What was found and what is allowed, in the units the message gives.
    double value = 0.0;
    double limit = 0.0;
    //! One sentence for people.
    QString message;
    //! A warning is reported and does not fail the verification.
    bool warning = false;
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
    //! The roller centre (mm): the X, Y and Z words under TRAORI.
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
    //! Lines along courses matched to a toolpath point and gated.
    int matchedLines = 0;
    //! Link lines (approach, retract, between courses), gated by their
    //! roller centre only: the wrist may turn freely along a link.
    int linkLines = 0;
    //! Feed moves whose roller centre stays put: no speed follows from the feed.
    int movesInPlace = 0;
    int towEvents = 0;
    //! Toolpath points walked, from each course's first approach point
    //! through its roll-out point.
    int points = 0;
    ZELKinVerifyExtreme centre;
    //! Where the tows land: the roller centre less the roller radius along
    //! the commanded normal, against the toolpath point.
    ZELKinVerifyExtreme contact;
    ZELKinVerifyExtreme normal;
    ZELKinVerifyExtreme travel;
    ZELKinVerifyExtreme rotaryStep;
    ZELKinVerifyExtreme speedRatio;
    ZELKinVerifyExtreme singularityMargin;
    ZELKinVerifyExtreme towEvent;
    //! How far link lines lie from the nearest roller centre of their
    //! link's toolpath points.
    ZELKinVerifyExtreme linkCentre;
    //! How far the NC's path of roller centres passes from a walked
    //! toolpath point's roller centre.
    ZELKinVerifyExtreme pathGap;
    //! Findings that fail; warnings apart.
    int findings = 0;
    int warnings = 0;
    //! How long the machine takes to run the lines (ZELKinRunTimeEstimator).
    ZELKinRunTime runTime;
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
    //! The courses of the toolpath's procedure.
    int courses = 0;
    //! The courses the file holds, in its order.
    QList<ZELKinVerifiedCourse> courseTallies;
    QList<ZELKinVerifiedLine> lines;
};

//! What a verification found: each ply's checks and every finding.
struct ZELKINEMATICS_EXPORT ZELKinVerification
{
    ZELKinVerifyGates gates;
    QList<ZELKinVerifiedPly> plies;
    //! Warnings among them.
    QList<ZELKinVerifyFinding> findings;
    //! Every ply's run time together.
    ZELKinRunTime runTime;

    //! True when no finding but warnings.
    bool IsPassed() const { return GetNumFailures() == 0; }
    qsizetype GetNumFailures() const;
    qsizetype GetNumWarnings() const { return findings.size() - GetNumFailures(); }
};

#endif // ZELKINVERIFICATION_H

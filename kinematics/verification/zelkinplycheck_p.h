#ifndef ZELKINPLYCHECK_P_H
#define ZELKINPLYCHECK_P_H

#include "zelkinncpath_p.h"
#include "zelkinverification.h"
#include "zelkinverifierhead_p.h"
#include "zelkinverifyplan_p.h"

#include <zelkinncreplay.h>

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

class ZELKinAFPMachine;
class ZELKinVariable;

//! What the machine's variables are, read once.
struct ZELKinVerifyAxes
{
    ZELKinVerifyAxes(const ZELKinAFPMachine& machine, const QList<int>& slides);

    bool IsRotary(int index) const { return rotary.contains(index); }
    QString LabelOf(int index) const;

    QList<ZELKinVariable*> variables;
    QList<int> slides;
    //! -1 for a machine without a material axis.
    int materialIndex = -1;
    QList<int> rotary;
};

/*!
    One ply file checked line by line against its procedure, when the
    toolpath has it: limits, speeds, rotary steps and codes on every line;
    roller centre, contact point, normal, direction of travel and
    singularity on the lines along a course, matched to the point each
    stands for; link lines against their link's points; then the tow events
    and the roller centre's path against every point of each course.
*/
class ZELKinPlyCheck
{
public:
    using Head = ZELKinVerifierHead;

    //! Findings go to `findings`; everything given outlives the check.
    ZELKinPlyCheck(const ZELKinVerifyAxes& axes, const Head& head, const ZELKinVerifyGates& gates,
                   const ZELKinNCPlyFile& ply, QList<ZELKinVerifyFinding>& findings);

    //! `plan` is null for a ply whose procedure the toolpath does not have:
    //! its lines are then checked for limits, speeds, steps and codes only.
    //! The ply's lines are kept in what it returns when `keepLines` is set.
    ZELKinVerifiedPly Run(const ZELKinProcedurePlan* plan, bool keepLines);

private:
    ZELKinVerifyPlace PlaceOf(const ZELKinNCMotion& motion, int point = 0) const;

    void Find(const QString& check, const ZELKinVerifyPlace& place, const QString& subject, double value, double limit,
              const QString& message, bool warning = false);

    template <typename Change> void Tally(int course, const Change& change);

    void Count(int course, int ZELKinVerifyTally::*count);

    void Keep(ZELKinVerifyExtreme ZELKinVerifyTally::*extreme, double value, const ZELKinVerifyPlace& place,
              const QString& subject = {});

    const ZELKinCoursePlan* CourseOf(int course) const;

    void FindUnknownCourses();

    ZELKinVerifiedLine Replay(const ZELKinNCMotion& motion, const Head::Pose& pose,
                              const std::optional<ZELKinVerifiedLine>& previous) const;

    ZELKinVerifiedLine StartOf(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& previous) const;

    static double Step(const ZELMathPoint& from, const ZELMathPoint& to);

    void CheckLimits(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& line);

    void FindLimit(const ZELKinNCMotion& motion, int axis, double value, double limit, const QString& side);

    void CheckRotarySteps(const ZELKinNCMotion& previous, const ZELKinNCMotion& motion);

    void CheckSpeeds(const ZELKinNCMotion& motion, const ZELKinVerifiedLine& before, const ZELKinVerifiedLine& line);

    void FindSpeed(const ZELKinNCMotion& motion, int axis, double speed, double limit);

    const ZELKinVerifyTarget* Match(const ZELKinCoursePlan& plan, const ZELKinNCMotion& motion,
                                    const ZELMathPoint& centre);

    double AngleGateOf(const ZELMathVector& direction, const ZELKinNCMotion& motion, const Head::Pose& pose) const;

    void CheckAlongCourse(const ZELKinNCMotion& motion, const Head::Pose& pose);

    void CheckAngle(const QString& check, const QString& what, ZELKinVerifyExtreme ZELKinVerifyTally::*extreme,
                    const ZELKinVerifyPlace& place, double angle, double gate);

    void CheckContact(const ZELKinVerifyPlace& place, const Head::Pose& pose, const ZELKinVerifyTarget& target,
                      double normalGate);

    void CheckSingularity(const ZELKinVerifyPlace& place, const Head::Pose& pose);

    void CheckLinkLine(const ZELKinNCMotion& motion, const Head::Pose& pose);

    void AddToPath(const ZELKinNCMotion& motion, const ZELMathPoint& centre);

    unsigned RecordLineOf(int course) const { return m_ply.courseRecords.value(course, 0u); }

    void CheckEveryCourseIsRun();

    static QString NameOf(const ZELKinCoursePlan& plan, int number);

    void CheckPath(int course, const ZELKinCoursePlan& plan);

    void CheckEveryLinkPointIsPassed();

    void CheckTowEvents();

    void CompareTowEvents(const ZELKinCoursePlan& plan, int course, const QList<const ZELKinNCTowEvent*>& events,
                          const QString& code);

    void CompareTowEvent(int course, int tow, const QString& verb, double wanted, const ZELKinNCTowEvent& written);

    const ZELKinVerifyAxes& m_axes;
    const Head& m_head;
    const ZELKinVerifyGates& m_gates;
    const double m_rollerRadius;
    const ZELKinNCPlyFile& m_ply;
    QList<ZELKinVerifyFinding>& m_findings;
    const ZELKinProcedurePlan* m_plan = nullptr;
    ZELKinVerifiedPly m_result;
    QMap<int, ZELKinVerifiedCourse> m_courses;
    QMap<int, ZELKinNCPath> m_paths;
    //! The roller centre's path through every line of the ply.
    ZELKinNCPath m_plyPath;
    //! Per link, the vertex of the ply's path where its lines begin.
    QHash<int, int> m_linkStarts;
    std::optional<ZELMathPoint> m_lastCentre;
    unsigned m_lastLine = 0;
    int m_matchedCourse = 0;
    int m_matchedIndex = 0;
};

#endif // ZELKINPLYCHECK_P_H

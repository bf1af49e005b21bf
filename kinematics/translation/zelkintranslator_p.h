#ifndef ZELKINTRANSLATOR_P_H
#define ZELKINTRANSLATOR_P_H

#include "zelkintranslator.h"

#include "zelkinsolutionseries.h"
#include "zelkinsolver.h"
#include "zelkintowcommand.h"

#include <zelcomptowmask.h>

#include <QList>
#include <QStringList>

#include <optional>

class ZELKinCourseLink;
class ZELKinProbeProcedure;
class ZELKinRollLayupProcedure;
class ZELKinTowCourse;
class ZELKinVariable;
class ZELTPCourseLink;
class ZELTPOnPartTrajectory;
class ZELTPProbingProcedure;
class ZELTPProcedure;
class ZELTPRollLayupProcedure;
class ZELTPToolChangeLink;
class ZELTPTowCourse;
class ZELTPTowTrajectory;
class ZELTPTrajectory;

class ZELKinTranslatorPrivate
{
    Q_DECLARE_PUBLIC(ZELKinTranslator)

public:
    ZELKinTranslatorPrivate(ZELKinTranslator* q, ZELKinSolver* solver)
        : q_ptr(q)
        , solver(solver)
    {
    }
    virtual ~ZELKinTranslatorPrivate() = default;

    //! The tows as they stand while a course is walked: laid, forced, and
    //! the forced rates last given.
    struct TowState
    {
        ZELCompTowMask laid;
        ZELCompTowMask forced;
        QList<double> rates;
    };

    //! The course being filled, with its toolpath course's point count,
    //! which is costly to count and needed at every off-part point.
    struct CourseWalk
    {
        ZELKinTowCourse* course;
        int numPoints;
    };

    //! Where the X, Y and Z values of a probe position go (null where the
    //! machine has no such linear variable).
    struct TipVariables
    {
        ZELKinVariable* x;
        ZELKinVariable* y;
        ZELKinVariable* z;
    };

    //! Where a course stands in the toolpath program: its procedure's index
    //! and name, and its own index among the procedure's courses (all of
    //! them, those laid with tows or not), each index from 0.
    struct CoursePlace
    {
        int procedure;
        QString procedureName;
        int course;
    };

    QDateTime GetProgramDate() const;

    //! Translates the toolpath procedure at `index` of its program.
    void TranslateProcedure(ZELKinProgram* program, const ZELTPProcedure* source, int index) const;
    void TranslateRollLayup(ZELKinProgram* program, const ZELTPRollLayupProcedure* source, int index) const;
    void AddPlies(ZELKinRollLayupProcedure* procedure, const ZELTPRollLayupProcedure* source) const;
    void TranslateLink(ZELKinRollLayupProcedure* procedure, const ZELTPCourseLink* source) const;
    void AddToolChange(ZELKinCourseLink* link, const ZELTPToolChangeLink* source) const;

    //! Translates the course at `place`; a ZELSysException on the way comes
    //! out as one whose message begins with the place.
    void TranslateTowCourseAt(ZELKinRollLayupProcedure* procedure, const ZELTPTowCourse* source,
                              const CoursePlace& place) const;
    void TranslateTowCourse(ZELKinRollLayupProcedure* procedure, const ZELTPTowCourse* source) const;
    void SetTowLengths(ZELKinTowCourse* course, const ZELTPTowCourse* source) const;
    void AddCoursePositions(ZELKinTowCourse* course, const ZELTPTowCourse* source) const;
    //! Adds a position per point `from`..`to` (both inclusive; a negative
    //! `from` is 0, a negative `to` the second to last point) of the
    //! trajectory, with the tilts of `tilts` (NaN without it). Returns the
    //! course's command count from before, where the segment starts.
    int AddSegment(const CourseWalk& walk, const ZELTPTrajectory* trajectory, int from, int to,
                   const ZELTPOnPartTrajectory* tilts) const;
    //! The tow, force and feed commands where `trajectory` changes the tows,
    //! after the first position of its segment, which starts at `start`.
    void AddTowChanges(ZELKinTowCourse* course, TowState& tows, const ZELTPTowTrajectory* trajectory, int start) const;
    //! Releases the forced tows and cuts the laid ones after the first
    //! position of the roll-out segment, which starts at `start`.
    void EndTows(ZELKinTowCourse* course, const TowState& tows, int start) const;
    //! A tow command of `type` at `index`, unless `mask` holds no tow.
    void AddTowCommand(ZELKinTowCourse* course, const ZELCompTowMask& mask, ZELKinTowCommand::CommandType type,
                       int index) const;

    void TranslateProbing(ZELKinProgram* program, const ZELTPProbingProcedure* source) const;
    void AddProbePositions(ZELKinProbeProcedure* procedure, const ZELTPTrajectory* trajectory,
                           const TipVariables& tip) const;

    //! A roll layup procedure solved, with the solver's lines held back and
    //! where its solving failed.
    struct SolvedProcedure
    {
        ZELKinRollLayupProcedure* layup;
        ZELKinSolutionSeries series;
        QStringList lines;
        std::optional<ZELKinSolver::FailurePlace> failure;
    };

    //! Solves every roll layup procedure and writes the solutions into its
    //! positions; removes those that have none.
    void Solve(ZELKinProgram* program) const;
    SolvedProcedure SolveHoldingLines(ZELKinRollLayupProcedure* layup) const;
    SolvedProcedure SolveInPlace(ZELKinRollLayupProcedure* layup) const;
    //! Writes the solutions into the procedure's positions, or removes a
    //! procedure that has none and notes it among the omissions.
    void Keep(ZELKinProgram* program, SolvedProcedure solved) const;

    ZELKinTranslator* const q_ptr;
    //! Not owned.
    ZELKinSolver* const solver;
    //! Null until set: programs then take the current date and time.
    QDateTime currentDateTime;
    //! How many procedures are solved at once.
    int threadCount = 1;
    bool phaseLinesPrinted = true;
    //! What the last Translate took out of its program.
    mutable QList<ZELKinTranslator::Omission> omissions;
};

#endif // ZELKINTRANSLATOR_P_H

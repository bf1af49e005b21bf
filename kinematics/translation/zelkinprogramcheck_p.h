#ifndef ZELKINPROGRAMCHECK_P_H
#define ZELKINPROGRAMCHECK_P_H

#include "zelkinprogramcheck.h"

#include <QList>

class ZELKinPosition;
class ZELKinProcedure;
class ZELKinProbeProcedure;
class ZELKinRollLayupProcedure;
class ZELKinScript;
class ZELKinVariable;

class ZELKinProgramCheckPrivate
{
    Q_DECLARE_PUBLIC(ZELKinProgramCheck)

public:
    ZELKinProgramCheckPrivate(ZELKinProgramCheck* q, const ZELKinSolver* solver)
        : q_ptr(q)
        , solver(solver)
    {
    }
    virtual ~ZELKinProgramCheckPrivate() = default;

    //! Gathers the problems of one check, keeping the first `listed`.
    struct Gathering
    {
        ZELKinProgramCheck::Findings findings;
        int listed = 0;

        void Add(const ZELKinProgramCheck::Problem& problem);
        //! Adds what `later` gathered, as if its problems came after these.
        void Merge(const Gathering& later);
    };

    //! Where a position stands: its procedure, script and number there.
    struct Place
    {
        QString procedure;
        QString script;
        int point = 0;
    };

    static ZELKinProgramCheck::Problem OmissionProblem(const ZELKinTranslator::Omission& omission);
    //! The problems of one procedure, at most `listed` of them listed.
    Gathering CheckProcedure(const ZELKinProcedure* procedure, int listed) const;
    void CheckLayup(const ZELKinRollLayupProcedure* procedure, Gathering& gathering) const;
    //! Numbers the positions of `script` from 1 and checks each.
    void CheckScript(const ZELKinScript* script, const QString& procedure, Gathering& gathering) const;
    void CheckProbing(const ZELKinProbeProcedure* procedure, Gathering& gathering) const;
    //! The problems of one layup position: missing or non-finite values
    //! and feed first, then the limits (linear axes as slide positions).
    void CheckLayupPosition(ZELKinPosition* position, const Place& place, Gathering& gathering) const;
    //! The limits of every value `position` defines, as it stands.
    void CheckLimits(const ZELKinPosition* position, const Place& place, Gathering& gathering) const;
    void CheckLimit(const ZELKinVariable* variable, double value, bool slide, const Place& place,
                    Gathering& gathering) const;

    ZELKinProgramCheck* const q_ptr;
    //! Not owned.
    const ZELKinSolver* const solver;
    //! The variables that drive the machine's joints, in the machine's
    //! order: every layup position needs a value for each.
    QList<ZELKinVariable*> driving;
    //! Every variable of the machine, in its order.
    QList<ZELKinVariable*> variables;
    //! How many procedures are checked at once.
    int threadCount = 1;
};

#endif // ZELKINPROGRAMCHECK_P_H

#ifndef ZELKINPROGRAMCHECK_H
#define ZELKINPROGRAMCHECK_H

#include "zelkinematics_export.h"
#include "zelkintranslator.h"

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

class ZELKinProgram;
class ZELKinProgramCheckPrivate;
class ZELKinSolver;

/*!
    Checks a translated program before any of its NC is written, so that a
    post either writes NC that drives the machine where the toolpath asks,
    inside the machine's limits, or writes nothing and says why.

    A problem is:
    - a roll layup procedure that the translator took out of the program
      (ZELKinTranslator::GetOmissions), at the place where path solving
      found no way on;
    - a position of a roll layup procedure without a value for X, Y, Z or a
      rotary axis, or with one that is not a finite number, or without a
      finite feed rate;
    - a value beyond its variable's limits: rotary axes as they stand,
      linear axes as slide positions (the solver's FromTraori turns a TRAORI
      position back into them). Probe positions are checked as they stand.

    Positions are numbered from 1 in their course or course link, as the
    failure lines of path solving number them. Lengths in mm, angles in rad;
    the messages give mm and degrees.
*/
class ZELKINEMATICS_EXPORT ZELKinProgramCheck
{
    Q_DECLARE_TR_FUNCTIONS(ZELKinProgramCheck)

public:
    //! One place where the program cannot be posted as the toolpath asks.
    struct Problem
    {
        //! The toolpath procedure's name.
        QString procedure;
        //! "course 3" or "course link 2"; empty for a probe position and
        //! for a procedure as a whole.
        QString script;
        //! The position in its course, course link or probe procedure, from
        //! 1; 0 for a procedure as a whole.
        int point = 0;
        //! What is wrong, one sentence without a full stop.
        QString message;

        //! "procedure 'Ply 1 0', course 3, point 17: " and the message.
        QString GetText() const;
    };

    //! What Check found.
    struct Findings
    {
        //! The first problems, in program and path order, omissions first.
        QList<Problem> first;
        //! How many problems there are in all.
        qint64 count = 0;
        //! The toolpath names of the procedures that have problems, in
        //! program order (omitted ones first).
        QStringList procedures;

        bool IsClean() const { return count == 0; }
        //! Adds what a check of later procedures found, as if one check had
        //! found both, listing at most `listed` problems in all.
        void Append(const Findings& later, int listed = 100);
        //! Takes the procedures with problems out of `program`, so that the
        //! rest can be written.
        void RemoveProceduresFrom(ZELKinProgram* program) const;
    };

    //! Checks programs solved by `solver` (not owned; it must outlive the
    //! check).
    explicit ZELKinProgramCheck(const ZELKinSolver* solver);
    virtual ~ZELKinProgramCheck();

    //! Checks up to `count` procedures at once, each on a thread of its
    //! own; 1 (the default, and what anything less is taken as) checks them
    //! one after the other on the calling thread. The solver must be safe to
    //! call from several threads, as the translator asks of it too. The
    //! findings are the same whatever the count.
    void SetThreadCount(int count);

    //! Checks `program` and the procedures that its translation took out
    //! of it, listing at most `listed` problems. Throws nothing.
    Findings Check(const ZELKinProgram* program, const QList<ZELKinTranslator::Omission>& omissions,
                   int listed = 100) const;

protected:
    ZELKinProgramCheck(ZELKinProgramCheckPrivate* d);

    std::unique_ptr<ZELKinProgramCheckPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinProgramCheck)
    Q_DISABLE_COPY_MOVE(ZELKinProgramCheck)
};

#endif // ZELKINPROGRAMCHECK_H

#ifndef ZELKINTRANSLATOR_H
#define ZELKINTRANSLATOR_H

#include "zelkinematics_export.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QList>
#include <QString>

#include <memory>

class ZELKinProgram;
class ZELKinSolver;
class ZELKinTranslatorPrivate;
class ZELTPProgram;

/*!
    Turns a toolpath program into a solved kinematic program for the machine
    of a solver: one kinematic procedure per toolpath procedure (a roll
    layup procedure with its plies, course links, tow courses, positions and
    tow commands, or a probe procedure with its positions and probe
    commands), after which every roll layup procedure is solved and the
    chosen axis values are written into its positions. It is the only
    creator of program objects, and calls Initialize() on each right after
    building it.

    Progress lines go where the libraries' progress lines go
    (ZELSysProgress: standard output unless the host chose otherwise), in
    order with the solver's: "Translating the program", then "Solving
    kinematics", then the solver's own lines. The same two stretches of work
    are counted for ZELSysProgress's step handler, in procedures and in
    positions. A roll layup procedure for which no continuous
    solution exists is removed from the program (not destroyed) with the
    line "      Could not successfully find a kinematics solution for
    procedure <name>. It will be omitted from the program.", <name> being
    the toolpath procedure's name.

    The program's author is the environment variable USER, or USERNAME when
    USER is empty; its date is the one given to SetCurrentDateTime. The NC
    files print the author, so an author that holds a control character or
    a double quote is refused before anything is translated.

    Lengths are in mm and angles in rad throughout, as in both models.
*/
class ZELKINEMATICS_EXPORT ZELKinTranslator
{
    Q_DECLARE_TR_FUNCTIONS(ZELKinTranslator)

public:
    //! Translates for the machine of `solver`, which solves the roll layup
    //! procedures. The solver is not owned and must outlive the translator.
    explicit ZELKinTranslator(ZELKinSolver* solver);
    virtual ~ZELKinTranslator();

    //! The date and time that programs are stamped with, so that a
    //! translation can be reproduced. While it is null (the default), each
    //! Translate takes the current local date and time.
    void SetCurrentDateTime(const QDateTime& now);

    //! Solves up to `count` roll layup procedures at once, each on a thread
    //! of its own; 1 (the default, and what anything less is taken as)
    //! solves them one after the other on the calling thread. The solver
    //! must then be safe to call from several threads at once, as
    //! ZELKinRBRSolver is. The program and the lines printed are the same
    //! whatever the count.
    void SetThreadCount(int count);
    //! Whether Translate prints its phase lines, "Translating the program"
    //! and "Solving kinematics" (the default), or leaves them to a host
    //! that translates a program in parts and prints them once.
    void SetPhaseLinesPrinted(bool printed);

    //! A roll layup procedure that Translate took out of its program: no
    //! continuous solution reaches it.
    struct Omission
    {
        //! The toolpath procedure's name.
        QString procedure;
        //! Where path solving first found no way on: a course link (true)
        //! or a course, numbered from 1 in the procedure; 0 when no position
        //! ever failed (a procedure without positions).
        bool onLink = false;
        int script = 0;
        //! The position in that course or link, from 1.
        int point = 0;
        //! Whether any wrist configuration within the limits reached that
        //! position (then none continued the motion from the one before).
        bool reachable = false;
    };

    //! The procedures that the last Translate took out of its program, in
    //! program order; empty before the first Translate.
    QList<Omission> GetOmissions() const;

    /*!
        Builds the kinematic program of `program` in the container of the
        solver's machine, solves it and returns it; the caller owns it (the
        container holds it). A null `program` gives a program without
        procedures. Toolpath procedures other than roll layups and probing
        sequences are passed over, and so are the courses of a roll layup
        that are not tow courses, each together with the link that leads
        into it, so that every link kept leads into the course after it. A
        roll layup's path ends at the first link without a course to go to,
        or at a link that it has walked already.

        The positions of a tow course follow its chain of trajectories, one
        position per toolpath point from the approach's first point through
        the retract's last: every point of the approach; the roll-in; every
        tow trajectory; every point of the roll-out, the roll-out point (where
        the roller leaves the part) among them; the retract. A point that two
        trajectories share is taken once: by the approach and the roll-out
        where they meet the roll-in and the retract, by the later trajectory
        where two on-part trajectories meet. Tow
        commands stand right after the first position of the tow trajectory
        where the tows change (the tows still laid are released and cut
        after the first position of the roll-out); when a trajectory gives no
        position, they go to the end of the course. A tow that the toolpath
        gives no length for keeps a length of 0.

        A link position's feed rate is that of its point's trajectory
        (ZELTPPoint::GetTrajectory). On a tool change link the tool change
        follows the first position of the tool-remove point.

        Throws ZELSysException "the author's name from the environment
        variable USER contains the line end U+000A; set USER to a name
        without control characters or double quotes" (USERNAME when that is
        the variable read) before anything is printed or built, when the
        author holds a line end, another control character or a double
        quote.

        Throws ZELSysException "not a tow trajectory" when a trajectory
        between a course's roll-in and roll-out does not lay tows, and what
        the program objects throw for a toolpath that does not fit the
        machine (for instance "tow mask size does not match machine tow mask
        size"). Such a message is prefixed with where the course stands in
        the toolpath, as the toolpath reader's JSON path to it, the toolpath
        procedure's name and the course's number from 1 among the
        procedure's courses: "$.program.procedures[1].courses[3]: procedure
        'Ply 2', course 4: not a tow trajectory". What was built up to a
        throw stays in the container.
    */
    ZELKinProgram* Translate(const ZELTPProgram* program) const;

protected:
    ZELKinTranslator(ZELKinTranslatorPrivate* d);

    std::unique_ptr<ZELKinTranslatorPrivate> const d_ptr;

private:
    //! Builds a program object through its creating constructor, which is
    //! open to the translator alone, and initialises it.
    template <typename Object, typename... Arguments> static Object* Create(Arguments&&... arguments);

    Q_DECLARE_PRIVATE(ZELKinTranslator)
    Q_DISABLE_COPY_MOVE(ZELKinTranslator)
};

#endif // ZELKINTRANSLATOR_H

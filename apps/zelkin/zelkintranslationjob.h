#ifndef ZELKINTRANSLATIONJOB_H
#define ZELKINTRANSLATIONJOB_H

#include <zelgeocontainer.h>
#include <zelkinprogramcheck.h>

#include <QString>

#include <memory>

class ZELKinAFPMachine;
class ZELKinProgram;
class ZELKinSolver;

/*!
    What "solve" and "post" share: a machine description and a toolpath file
    in, a solved kinematic program out, as a host application would make it.
    The library prints its progress lines on stdout while the job runs.

    The program's original file name and revision number are the toolpath
    program's name and revision, so that the NC files carry them.
*/
class ZELKinTranslationJob
{
public:
    struct Input
    {
        QString machinePath;
        QString toolpathPath;
        //! Where path solving writes its diagnostic files; none when empty.
        QString debugPath;
    };

    //! Loads, translates and solves. Throws ZELSysException (and its kin)
    //! for a machine or toolpath that cannot be read or translated.
    explicit ZELKinTranslationJob(const Input& input);
    ~ZELKinTranslationJob();

    ZELKinAFPMachine* GetMachine() const { return m_machine; }
    //! What the check of the solved program found: the procedures that
    //! could not be solved, positions without axis values or beyond a limit.
    const ZELKinProgramCheck::Findings& GetFindings() const { return m_findings; }

    //! Before anything is written: throws ZELKinUndeliverable, naming the
    //! first problem and their count, when the check found any, unless
    //! `keepGoing`; then the procedures with problems leave the program, so
    //! that the rest can be written, and ThrowIfIncomplete throws after it.
    void RequireDeliverable(bool keepGoing);
    //! After writing with `keepGoing`: throws ZELKinUndeliverable when
    //! procedures were left out.
    void ThrowIfIncomplete() const;
    //! The solved program; the procedures that could not be solved are gone.
    ZELKinProgram* GetProgram() const { return m_program; }
    //! The machine's solver, configured from its description.
    const ZELKinSolver* GetSolver() const { return m_solver.get(); }

    //! The largest toolpath this machine has the memory to post, in bytes:
    //! an eighth of its physical memory, and no more than the reader takes
    //! at all. A toolpath that is a stream (a pipe, a device) is read no
    //! further than this.
    static qint64 GetMaximumToolpathBytes();
    //! The machine's solver (the caller owns it); throws ZELSysException
    //! "the machine's solver 'X' is not one zelkin knows (it knows "RBR")".
    static ZELKinSolver* CreateSolver(const ZELKinAFPMachine& machine);
    //! Throws ZELKinUndeliverable "<the first problem> (<n> problems in
    //! all); nothing was written" when `findings` are not clean.
    static void ThrowIfUndeliverable(const ZELKinProgramCheck::Findings& findings);
    //! Throws ZELKinUndeliverable "<the first problem> (<n> problems in
    //! all); written without '<procedure>', ..." when `findings` are not
    //! clean.
    static void ThrowIfIncomplete(const ZELKinProgramCheck::Findings& findings);

    //! Keeps a finished job, still reachable, until the process ends, and
    //! never destroys it: the tool exits right after its last file, and
    //! deleting a program of millions of objects one by one would take
    //! about as long as solving it. The operating system takes the memory
    //! back at once. Returns the job kept.
    static ZELKinTranslationJob& KeepUntilExit(std::unique_ptr<ZELKinTranslationJob> job);

private:
    ZELGeoContainer m_container;
    ZELKinAFPMachine* m_machine = nullptr;
    std::unique_ptr<ZELKinSolver> m_solver;
    ZELKinProgram* m_program = nullptr;
    ZELKinProgramCheck::Findings m_findings;
};

#endif // ZELKINTRANSLATIONJOB_H

#ifndef ZELKINTRANSLATIONJOB_H
#define ZELKINTRANSLATIONJOB_H

#include <zelgeocontainer.h>

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
    //! The solved program; the procedures that could not be solved are gone.
    ZELKinProgram* GetProgram() const { return m_program; }
    //! The machine's solver, configured from its description.
    const ZELKinSolver* GetSolver() const { return m_solver.get(); }

    //! Keeps a finished job, still reachable, until the process ends, and
    //! never destroys it: the tool exits right after its last file, and
    //! deleting a program of millions of objects one by one would take
    //! about as long as solving it. The operating system takes the memory
    //! back at once.
    static void KeepUntilExit(std::unique_ptr<ZELKinTranslationJob> job);

private:
    ZELGeoContainer m_container;
    ZELKinAFPMachine* m_machine = nullptr;
    std::unique_ptr<ZELKinSolver> m_solver;
    ZELKinProgram* m_program = nullptr;
};

#endif // ZELKINTRANSLATIONJOB_H

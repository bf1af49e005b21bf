#ifndef ZELKINSTREAMINGPOST_P_H
#define ZELKINSTREAMINGPOST_P_H

#include "zelkinstreamingpost.h"

#include <QStringList>

#include <memory>

class ZELKinProgram;
class ZELTPProgram;

class ZELKinStreamingPostPrivate
{
    Q_DECLARE_PUBLIC(ZELKinStreamingPost)

public:
    ZELKinStreamingPostPrivate(ZELKinStreamingPost* q, ZELKinStreamingPost::MachineLoader loader,
                               const ZELTPProgramStream* toolpath);
    virtual ~ZELKinStreamingPostPrivate();

    //! One procedure, translated, solved and checked in a container of
    //! its own, which goes with it.
    struct Part
    {
        std::unique_ptr<ZELGeoContainer> container;
        const ZELTPProgram* toolpath = nullptr;
        ZELKinProgram* program = nullptr;
        ZELKinProgramCheck::Findings findings;
        //! Whether the translator took the procedure out: no continuous
        //! solution reaches it.
        bool omitted = false;
        //! The progress lines of its translation, printed once it is its
        //! turn to be written.
        QStringList lines;
    };

    //! A program without procedures that names the whole program, for the
    //! program-set file. Keeps its container in `container` and the phase
    //! lines of the translation in `phaseLines`.
    ZELKinProgram* Identify(std::unique_ptr<ZELGeoContainer>& container, QStringList& phaseLines) const;
    //! Reads, translates, solves and checks procedure `index`.
    Part Prepare(int index) const;
    //! Prepares and writes every procedure, gathering what the checks found.
    void PostParts(ZELKinWriter& writer, QStringList& phaseLines, ZELKinProgramCheck::Findings& omitted,
                   ZELKinProgramCheck::Findings& others);

    ZELKinStreamingPost* const q_ptr;
    const ZELKinStreamingPost::MachineLoader loader;
    const ZELTPProgramStream* const toolpath;
    QDateTime now;
    int threadCount = 1;
    bool keepGoing = false;
    ZELKinStreamingPost::ProcedureInspection inspection;
    QHash<QString, qint64> positionsByProcedure;
};

#endif // ZELKINSTREAMINGPOST_P_H

#ifndef ZELKINVERIFIER_H
#define ZELKINVERIFIER_H

#include "zelkinematics_export.h"
#include "zelkinverification.h"

#include <zelkinncreplay.h>

#include <functional>
#include <memory>

class ZELGeoContainer;
class ZELKinAFPMachine;
class ZELKinVerifierPrivate;
class ZELTPProcedure;
class ZELTPProgram;
class ZELTPProgramStream;

/*!
    Checks posted NC against the toolpath it was posted from, as a machine
    simulator would, with kinematics of its own: each line's axis values run
    through the forward kinematics of the machine's joint tree
    (ZELKinForwardKinematics) and the tool the machine description's wrist
    configuration describes, and are compared with the toolpath's points,
    never with a solved program.

    Each roll layup procedure of the toolpath is walked course by course in
    path order, each course from its approach trajectory's first point
    through its roll-out point: a procedure without a ply file, a course no
    line runs along and a point the NC's path of roller centres does not
    pass are findings. Lines along a course are matched to the point they
    stand for by the material axis and the nearest roller centre, and gated
    by what the NC's modal rule allows them (docs/zelkin.md); link lines by
    their roller centre against their link's points. Each ply's and course's
    run time is estimated beside the checks (ZELKinRunTimeEstimator).

    The checks go one ply at a time: a toolpath and posted NC handed over
    procedure by procedure and ply by ply (ToolpathSource, NCSource) are
    held no more than one procedure and one ply at once, and give the
    findings the whole toolpath and NC give, in the same order.
*/
class ZELKINEMATICS_EXPORT ZELKinVerifier
{
public:
    /*!
        `machine` is not owned and must outlive the verifier. Throws
        ZELSysException for a machine whose kinematics the checks cannot
        follow: a joint tree that is not one chain, no three
        slides driven by variables named X, Y and Z, no wrist of three rotary
        joints at the chain's end, or a wrist configuration whose vectors
        are not three numbers.
    */
    ZELKinVerifier(const ZELKinAFPMachine& machine, const ZELKinVerifyGates& gates);
    virtual ~ZELKinVerifier();

    //! A toolpath handed over one procedure at a time.
    struct ToolpathSource
    {
        //! The procedures of `toolpath`, which outlives the source.
        static ToolpathSource Whole(const ZELTPProgram& toolpath);
        //! The procedures `stream`, open and outliving the source, reads.
        static ToolpathSource ByProcedure(const ZELTPProgramStream& stream);

        int numProcedures = 0;
        //! Procedure `index` (from 0), its objects made in `container`,
        //! which is destroyed once the procedure has been planned.
        std::function<const ZELTPProcedure*(int index, ZELGeoContainer* container)> readProcedure;
    };

    //! Posted NC handed over one ply at a time.
    struct NCSource
    {
        //! The plies of `nc`, which outlives the source.
        static NCSource Whole(const ZELKinNCProgram& nc);
        //! The plies of the program at `path`, read by `replay`, which
        //! outlives the source: its list of plies now, each ply when asked.
        static NCSource ByPly(const ZELKinNCReplay& replay, const QString& path);

        ZELKinNCPlySet plySet;
        //! Ply `index` of `plySet.plies`, read back.
        std::function<ZELKinNCPlyFile(int index)> readPly;
    };

    /*!
        Whether each checked ply keeps its lines (ZELKinVerifiedPly::lines),
        as it does unless told otherwise. A host that needs only the
        findings and tallies turns them off: a ply's lines, about 200 bytes
        each, are then never held, not even while the ply is checked, and
        a PlyHandler is told of each ply without them.
    */
    void SetKeepLines(bool keep);
    bool GetKeepLines() const;

    //! Told of each ply once it is checked, with its lines and the findings
    //! its check made: every one of its own, and any about the procedure it
    //! lays, which are the program's and name no ply. `index` is where the
    //! ply stands in the verification's plies. What it leaves of the ply is
    //! what the verification keeps.
    using PlyHandler
        = std::function<void(int index, ZELKinVerifiedPly& ply, const QList<ZELKinVerifyFinding>& findings)>;

    //! `nc` as posted from `toolpath`, read back by ZELKinNCReplay.
    ZELKinVerification Verify(const ZELTPProgram& toolpath, const ZELKinNCProgram& nc) const;

    //! The same checks, holding one procedure and one ply at a time. Each
    //! roll layup procedure is read once, in the toolpath's order, and the
    //! plies that lay it are read right after it; a ply that lays no
    //! procedure of the toolpath is read last.
    ZELKinVerification Verify(const ToolpathSource& toolpath, const NCSource& nc,
                              const PlyHandler& handler = PlyHandler()) const;

protected:
    ZELKinVerifier(ZELKinVerifierPrivate* d);

    std::unique_ptr<ZELKinVerifierPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinVerifier)
    Q_DISABLE_COPY_MOVE(ZELKinVerifier)
};

#endif // ZELKINVERIFIER_H

#ifndef ZELKINAFPGCODEPROBING_P_H
#define ZELKINAFPGCODEPROBING_P_H

#include <zelmathpoint.h>

#include <QDateTime>
#include <QList>

class ZELKinNCStream;
class ZELKinProbeProcedure;

/*!
    The tool point file (".PTPF", or the probing section of a bundle) of
    one probe procedure: the operator mounts the probe, and for each target
    the machine moves near it, the operator brings the probe within the
    tooling-retract distance by hand, and a sphere probing cycle measures
    it.

    The targets are read first: each probe command targets the X, Y and Z
    of the last position before it ((0, 0, 0) before any), and the feed and
    the target diameter are the last ones given (0 until then). Lengths are
    written in inches. When the program's machine is not a ZELKinAFPMachine
    or lacks an "X", "Y" or "Z" axis, nothing is written.
*/
class ZELKinAFPGCodeProbing
{
public:
    //! `toolingRetract` in mm; `now` is printed as the time the file was
    //! made.
    ZELKinAFPGCodeProbing(const ZELKinProbeProcedure* procedure, double toolingRetract, const QDateTime& now);

    void Write(ZELKinNCStream& out);

private:
    //! Whether the machine has what the file needs.
    bool CanWrite() const;
    void CollectTargets();
    void WriteStartUp(ZELKinNCStream& out) const;
    void WriteModel(ZELKinNCStream& out) const;
    void WriteLocating(ZELKinNCStream& out, int target) const;
    void WriteMoveToTarget(ZELKinNCStream& out, int target) const;

    const ZELKinProbeProcedure* const procedure;
    const double toolingRetract;
    const QDateTime now;
    QList<ZELMathPoint> targets;
    double feedrate = 0.0;
    double diameter = 0.0;
};

#endif // ZELKINAFPGCODEPROBING_P_H

#ifndef ZELTPDOCUMENTWRITER_H
#define ZELTPDOCUMENTWRITER_H

#include "zeltoolpath_export.h"
#include "zeltpcourselink.h"
#include "zeltpmachineconfiguration.h"
#include "zeltpmaterialdescription.h"

#include <zelmathplane.h>
#include <zelmathpoint.h>
#include <zelmathvector.h>

#include <QList>
#include <QString>

#include <memory>
#include <optional>

class QIODevice;
class ZELTPDocumentWriterPrivate;

/*!
    Writes a toolpath document (JSON, format "zelkin-toolpath", version 1),
    the format ZELTPProgramReader reads, to a device as it goes: a program of
    any size needs no more memory than the writer's buffer and what the
    caller holds of one trajectory at a time.

    The calls follow the document's nesting:

        BeginProgram
          BeginRollLayupProcedure
            BeginLinks  (BeginLink  trajectories  EndLink)...    EndLinks
            BeginCourses (BeginCourse trajectories EndCourse)... EndCourses
          EndRollLayupProcedure
          BeginProbingProcedure  trajectories  EndProbingProcedure
        EndProgram

    where a trajectory is Begin...Trajectory, AddPoint for each point, then
    EndTrajectory. Values are in the document's units: mm, mm/min and
    degrees. Each container puts its entries on lines of their own, indented
    by two blanks a level, except a point, a triple, a material, a ply, a
    machine configuration, a safety plane, a tow length list and a probing
    point, each of which stays on one line. Numbers are written in the
    shortest form that reads back as the same double, so the same calls give
    the same bytes.

    Calls out of that order write a document the reader refuses. Every call
    that writes may throw ZELSysException "cannot write <name>: <reason>"
    when the device refuses the text (the document is then incomplete and
    should be discarded), and "cannot write a number that is not finite:
    <value>" for NaN and infinities.
*/
class ZELTOOLPATH_EXPORT ZELTPDocumentWriter
{
public:
    //! A ply of a roll layup procedure.
    struct Ply
    {
        QString name;
        //! Degrees from the procedure's reference direction.
        double orientation = 0.0;
        //! One of the format's propagation names ("angle", "parallel", ...).
        QString propagation;
    };

    //! What a roll layup procedure holds before its links and courses.
    struct RollLayup
    {
        QString name;
        ZELMathPlane safetyPlane;
        double addingFeedrate = 0.0;
        double cuttingFeedrate = 0.0;
        ZELTPMaterialDescription material;
        //! mm.
        double totalMaterialLength = 0.0;
        QList<Ply> plies;
    };

    //! A link's change of roller: the point (index along the link) where the
    //! head leaves the previous one, and the configurations on either side.
    struct ToolChange
    {
        int removePoint = 0;
        ZELTPMachineConfiguration previous;
        ZELTPMachineConfiguration next;
    };

    //! What a course holds before its trajectories.
    struct Course
    {
        QString name;
        //! The course's tows, as the format spells a tow mask.
        QString towMask;
        ZELTPMachineConfiguration machineConfiguration;
        //! One length a tow of the mask (mm).
        QList<double> towLengths;
        //! Indices into the roll-in and the roll-out trajectories.
        int rollInPoint = 0;
        int rollOutPoint = 0;
    };

    //! The head's tilts on the part (degrees).
    struct Tilts
    {
        double forward = 0.0;
        double side = 0.0;
        double smoothing = 0.0;
    };

    //! Writes to `device` (not owned), open for writing; `name` names it in errors.
    ZELTPDocumentWriter(QIODevice* device, const QString& name);
    virtual ~ZELTPDocumentWriter();

    void BeginProgram(const QString& name, const QString& revision);
    //! Ends the document with a line break and hands everything buffered to the device.
    void EndProgram();

    void BeginRollLayupProcedure(const RollLayup& procedure);
    void EndRollLayupProcedure();
    void BeginLinks();
    void EndLinks();
    void BeginLink(const QString& name, ZELTPCourseLink::PointsDetail pointsDetail);
    void EndLink(const std::optional<ToolChange>& toolChange = std::nullopt);
    void BeginCourses();
    void EndCourses();
    void BeginCourse(const Course& course);
    void EndCourse();

    void BeginProbingProcedure(const QString& name, const ZELMathPlane& safetyPlane);
    //! Ends the procedure with its probing points, one sphere diameter (mm) each.
    void EndProbingProcedure(const QList<double>& diameters);

    void BeginOffPartTrajectory(double feedrate);
    void BeginOnPartTrajectory(double feedrate, const Tilts& tilts);
    //! `towMask`: the tows laid along the trajectory.
    void BeginTowTrajectory(double feedrate, const Tilts& tilts, const QString& towMask);
    //! A point of the open trajectory: the compaction point (mm), the
    //! direction of travel and the surface normal, written as given.
    void AddPoint(const ZELMathPoint& origin, const ZELMathVector& travel, const ZELMathVector& normal);
    void EndTrajectory();

    //! What has been begun so far: procedures of both kinds, courses,
    //! links and points (of every trajectory).
    struct Counts
    {
        int procedures = 0;
        int courses = 0;
        int links = 0;
        qint64 points = 0;
    };
    Counts GetCounts() const;

protected:
    explicit ZELTPDocumentWriter(ZELTPDocumentWriterPrivate* d);

    std::unique_ptr<ZELTPDocumentWriterPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELTPDocumentWriter)
    Q_DISABLE_COPY_MOVE(ZELTPDocumentWriter)
};

#endif // ZELTPDOCUMENTWRITER_H

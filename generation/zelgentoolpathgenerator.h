#ifndef ZELGENTOOLPATHGENERATOR_H
#define ZELGENTOOLPATHGENERATOR_H

#include "zelgeneration_export.h"

#include <zelmathplane.h>
#include <zeltpmachineconfiguration.h>

#include <QList>
#include <QString>

class ZELGenCoursePlan;
class ZELTPDocumentWriter;
class ZELGenPart;
class ZELSysProgress;

/*!
    Makes a fibre placement toolpath program for a part on the example gantry
    and writes it as a toolpath document (format "zelkin-toolpath", version 1)
    while it is made, so that programs of any size take little memory.

    The program holds one roll layup procedure per ply angle, then a probing
    procedure:
    - each ply lays `courses` parallel courses of the 16-tow roller (101.6 mm
      wide) side by side across the middle of the part; where they would be
      wider together than the part, they are spread across it and overlap.
      Tows are added and cut in groups of four where each group enters and
      leaves the part (ZELGenCoursePlan);
    - a course: an approach down to a lifted lead-in point, a roll-in that
      touches down 25.4 mm before the first add, one tow trajectory per
      stretch of unchanged tows with `pointsPerCourse` points spread evenly
      from the first add to the last cut (plus the adds and cuts), a
      roll-out 25.4 mm past the last cut up to a lifted lift-off point, and a
      retract;
    - links: an approach from above the safety plane, a transfer between
      consecutive courses above it, a final retract; the last course of the
      first ply is laid with an 8-tow roller (tows 5 to 12), so the link
      into it changes the roller and the first link that follows on another
      course changes it back;
    - the probing procedure probes three sphere targets (12.7 mm) on the tool
      around the part.
    The ply angle is measured in the part's course plane from machine +X
    towards +Y. Tilt and smoothing angles are 0. The same settings give the
    same text, byte for byte.
*/
class ZELGENERATION_EXPORT ZELGenToolpathGenerator
{
public:
    struct Settings
    {
        //! The program's name.
        QString name;
        //! One ply per angle (degrees, -90 to 90), in order.
        QList<double> plyAngles;
        //! Courses per ply, at least 1.
        int courses = 8;
        //! Points spread along each course's laid stretch, at least 2.
        int pointsPerCourse = 50;
    };

    //! `part` is not owned and must outlive the generator.
    ZELGenToolpathGenerator(const ZELGenPart& part, const Settings& settings);

    //! Writes the whole program as one document, counting the courses
    //! planned as "Generating the toolpath" (ZELSysProgress). Throws what
    //! the writer throws when its device refuses the text.
    void Write(ZELTPDocumentWriter& writer) const;

private:
    //! A roller and the head tows it lays: `towCount` from `firstTow` (0 for tow 1).
    struct Roller
    {
        const char* name;
        int firstTow;
        int towCount;
    };

    void WriteLayupProcedure(ZELTPDocumentWriter& writer, int ply, const Roller*& onHead,
                             ZELSysProgress& progress) const;
    void WriteLinks(ZELTPDocumentWriter& writer, int ply, const Roller*& onHead) const;
    void WriteCourses(ZELTPDocumentWriter& writer, int ply, ZELSysProgress& progress) const;
    void WriteCourse(ZELTPDocumentWriter& writer, const ZELGenCoursePlan& plan, const Roller& roller, int number) const;
    void WriteTowTrajectory(ZELTPDocumentWriter& writer, const ZELGenCoursePlan& plan, int stretch) const;
    void WriteProbingProcedure(ZELTPDocumentWriter& writer) const;

    static ZELTPMachineConfiguration MachineConfigurationOf(const Roller& roller);
    ZELMathPlane GetSafetyPlane() const;
    ZELGenCoursePlan PlanCourse(int ply, int course) const;
    const Roller& GetRoller(int ply, int course) const;
    double GetMaterialLength(int ply) const;
    double GetSafetyHeight() const;
    double GetTraverseHeight() const;
    double GetParkHeight() const;

    static const Roller kWideRoller;
    static const Roller kNarrowRoller;

    const ZELGenPart& m_part;
    Settings m_settings;
};

#endif // ZELGENTOOLPATHGENERATOR_H

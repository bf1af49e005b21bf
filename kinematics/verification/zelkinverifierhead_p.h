#ifndef ZELKINVERIFIERHEAD_P_H
#define ZELKINVERIFIERHEAD_P_H

#include <zelkinforwardkinematics.h>
#include <zelmathaxis.h>
#include <zelmathpoint.h>
#include <zelmathvector.h>

#include <QList>
#include <QString>
#include <QVector>

class ZELKinAFPMachine;
class ZELKinJoint;
class ZELKinRotaryJoint;

/*!
    The machine's kinematics as the checks follow them: the joint tree's
    forward kinematics, the tool the wrist configuration describes, and
    TRAORI's programmed point.
*/
class ZELKinVerifierHead
{
public:
    //! Where a line's values put the head.
    struct Pose
    {
        //! The line's values with X, Y and Z as slide positions.
        QVector<double> axes;
        //! The programmed point, the roller centre.
        ZELMathPoint centre;
        ZELMathVector normal;
        ZELMathVector travel;
        //! The axes of the chain's rotary joints as the line turns them.
        QList<ZELMathVector> rotaryAxes;
    };

    //! Throws ZELSysException for a machine whose kinematics the checks
    //! cannot follow (ZELKinVerifier tells which).
    explicit ZELKinVerifierHead(const ZELKinAFPMachine& machine);

    double GetRollerRadius() const { return m_rollerRadius; }
    const QList<int>& GetSlideVariables() const { return m_slides; }
    const QList<int>& GetRotaryVariables() const { return m_rotaryVariables; }

    Pose PoseOf(const QVector<double>& values) const;

    //! The angle (rad, 0 to pi/2) between the normal's line and the first
    //! roll's axis, along which the wrist's first roll is free.
    double SingularityMarginOf(const Pose& pose) const;

private:
    void FindSlides(const ZELKinAFPMachine& machine, const QList<ZELKinJoint*>& chain);

    void FindWrist(const QList<ZELKinJoint*>& chain);

    ZELMathAxis HomeToolFrame(const QString& configuration) const;

    ZELKinForwardKinematics m_kinematics;
    double m_rollerRadius = 0.0;
    QList<int> m_slides;
    QList<const ZELKinJoint*> m_rotaryJoints;
    QList<int> m_rotaryVariables;
    const ZELKinRotaryJoint* m_bend = nullptr;
    const ZELKinRotaryJoint* m_secondRoll = nullptr;
    //! The first roll among the rotary joints.
    int m_firstRoll = 0;
    ZELMathVector m_tipOffset;
};

#endif // ZELKINVERIFIERHEAD_P_H

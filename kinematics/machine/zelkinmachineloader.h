#ifndef ZELKINMACHINELOADER_H
#define ZELKINMACHINELOADER_H

#include "zelkinematics_export.h"

#include <QCoreApplication>

#include <memory>

class QDomElement;
class QIODevice;
class ZELGeoContainer;
class ZELKinAFPMachine;
class ZELKinMachine;
class ZELKinMachineLoaderPrivate;

/*!
    Reads a machine description in XML and builds the machine, its variables
    and its joints in a geometry container. It is the only creator of machine
    objects. The format is described for users in docs/machine-description.md.

    Rotary limits are given in degrees, rotary speeds in degrees per minute
    and accelerations in degrees per second squared; linear limits in mm,
    speeds in metres per minute and accelerations in metres per second
    squared. The loader converts them to the model's units (rad, rad/s,
    rad/s², mm, mm/s, mm/s²).
*/
class ZELKINEMATICS_EXPORT ZELKinMachineLoader
{
    Q_DECLARE_TR_FUNCTIONS(ZELKinMachineLoader)

public:
    //! The largest description LoadFromXML reads, in bytes: descriptions
    //! are a few kilobytes, and the bound keeps hostile input from the DOM
    //! parser.
    static constexpr qint64 MaximumDescriptionBytes = qint64(4) << 20;
    //! The deepest nesting of elements LoadFromXML accepts, the root
    //! counting as the first level.
    static constexpr int MaximumDepth = 64;

public:
    //! The loader creates its objects in `container` (not owned).
    explicit ZELKinMachineLoader(ZELGeoContainer* container);
    virtual ~ZELKinMachineLoader();

    //! Builds the machine that `device` describes and returns it (owned by
    //! the container); null when the root's "type" is not "AFP", in which
    //! case nothing is built. A document that does not parse reads as an
    //! empty one.
    //!
    //! Throws ZELSysException for a description that breaks a rule (the
    //! machine's, a variable's or a joint's messages), and, before parsing
    //! it, for one larger than MaximumDescriptionBytes ("The machine
    //! description is larger than 4194304 bytes") or nesting elements deeper
    //! than MaximumDepth ("The machine description nests elements deeper
    //! than 64 levels"). Objects created before
    //! the failure stay in the container. A description without exactly one
    //! "variables" and one "joints" element, or a variable without
    //! "max-accel", ends the process through Qt's fatal message handler.
    ZELKinMachine* LoadFromXML(QIODevice* device) const;

    //! The checks LoadFromXML makes before parsing, on a description already
    //! read: throws ZELSysException with the same messages when
    //! `description` is larger than MaximumDescriptionBytes or nests
    //! elements deeper than MaximumDepth. Syntax errors pass.
    static void CheckBounds(const QByteArray& description);

protected:
    ZELKinMachineLoader(ZELKinMachineLoaderPrivate* d);

    std::unique_ptr<ZELKinMachineLoaderPrivate> const d_ptr;

private:
    // The machine objects' creating constructors are open to the loader itself.
    ZELKinAFPMachine* BuildMachine(const QDomElement& root) const;
    void BuildVariable(ZELKinMachine* machine, const QDomElement& element) const;
    void BuildJoint(ZELKinMachine* machine, const QDomElement& element) const;

    Q_DECLARE_PRIVATE(ZELKinMachineLoader)
    Q_DISABLE_COPY_MOVE(ZELKinMachineLoader)
};

#endif // ZELKINMACHINELOADER_H
